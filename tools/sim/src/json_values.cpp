#include "json_values.h"

#include <algorithm>
#include <memory>
#include <sstream>

#include "json_text.h"
#include "scanner.h"
#include "status.h"

namespace veltasim {

Json::Value readObject(std::string_view text) {
    Json::Value json;
    if (!parseJson(text, json)) throw Refused(kBadJsonFormat);
    if (!json.isObject()) throw Refused(kBadJsonContent);
    return json;
}

const Json::Value& memberOf(const Json::Value& object, const char* name) {
    return object.isObject() ? object[name] : Json::Value::nullSingleton();
}

const Json::Value& objectIn(const Json::Value& object, const char* name) {
    const Json::Value& member = memberOf(object, name);
    if (!member.isObject()) throw Refused(badParameter(name));
    return member;
}

const Json::Value& arrayIn(const Json::Value& object, const char* name) {
    const Json::Value& member = memberOf(object, name);
    if (!member.isArray()) throw Refused(badParameter(name));
    return member;
}

std::string textIn(const Json::Value& object, const char* name) {
    const Json::Value& member = memberOf(object, name);
    if (!member.isString()) throw Refused(badParameter(name));
    return member.asString();
}

unsigned numberIn(const Json::Value& object, const char* name) {
    const Json::Value& member = memberOf(object, name);
    if (!member.isUInt()) throw Refused(badParameter(name));
    return member.asUInt();
}

unsigned numberOr0(const Json::Value& object, const char* name) {
    return memberOf(object, name).isNull() ? 0 : numberIn(object, name);
}

std::vector<std::string> textsIn(const Json::Value& object, const char* arrayName, const char* name) {
    std::vector<std::string> texts;
    for (const Json::Value& item : arrayIn(object, arrayName))
        texts.push_back(textIn(item, name));
    return texts;
}

void requireTextIfThere(const Json::Value& object, const char* name) {
    const Json::Value& member = memberOf(object, name);
    if (!member.isNull() && !member.isString()) throw Refused(badParameter(name));
}

std::string textOr(const Json::Value& object, const char* name, std::string_view otherwise) {
    const Json::Value& member = memberOf(object, name);
    return member.isString() ? member.asString() : std::string(otherwise);
}

bool isTrue(const Json::Value& object, const char* name) {
    const Json::Value& member = memberOf(object, name);
    return member.isBool() && member.asBool();
}

std::vector<unsigned> numbersOf(const Json::Value& value) {
    if (value.isUInt()) return {value.asUInt()};
    std::vector<unsigned> numbers;
    std::istringstream list(value.isString() ? value.asString() : "");
    for (std::string piece; std::getline(list, piece, ',');) {
        std::erase(piece, ' ');
        Scanner scanner(piece);
        const int number = scanner.number(1, 6);
        if (scanner.isAtEnd()) numbers.push_back(static_cast<unsigned>(number));
    }
    return numbers;
}

void mergeInto(Json::Value& kept, const Json::Value& named) {
    for (const std::string& name : named.getMemberNames()) {
        const Json::Value& value = named[name];
        Json::Value& old = kept[name];
        if (old.isObject() && value.isObject())
            mergeInto(old, value);
        else
            old = value;
    }
}

Reply jsonReply(const Json::Value& json) {
    // Making a writer costs far more than using it.
    thread_local const std::unique_ptr<Json::StreamWriter> writer = [] {
        Json::StreamWriterBuilder builder;
        builder["emitUTF8"] = true;
        builder["indentation"] = "\t";
        return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
    }();
    std::ostringstream out;
    writer->write(json, &out);
    return {200, kJsonType, out.str()};
}

Json::Value okJson() {
    Json::Value json;
    json["statusCode"] = 1;
    json["statusString"] = "OK";
    json["subStatusCode"] = "ok";
    return json;
}

}  // namespace veltasim
