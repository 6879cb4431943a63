// Members of the JSON that requests bring.
#pragma once

#include <json/json.h>

#include <string>
#include <string_view>
#include <vector>

#include "reply.h"

namespace veltasim {

// These refuse, by throwing Refused, what is missing or of another type.
Json::Value readObject(std::string_view text);
const Json::Value& objectIn(const Json::Value& object, const char* name);
const Json::Value& arrayIn(const Json::Value& object, const char* name);
std::string textIn(const Json::Value& object, const char* name);
unsigned numberIn(const Json::Value& object, const char* name);
unsigned numberOr0(const Json::Value& object, const char* name);  // 0: it is missing
// The text of that name in each object of the array of the other name.
std::vector<std::string> textsIn(const Json::Value& object, const char* arrayName, const char* name);
void requireTextIfThere(const Json::Value& object, const char* name);

// These take what is missing or of another type for nothing.
std::string textOr(const Json::Value& object, const char* name, std::string_view otherwise = "");
bool isTrue(const Json::Value& object, const char* name);
const Json::Value& memberOf(const Json::Value& object, const char* name);  // null: none
std::vector<unsigned> numbersOf(const Json::Value& value);                 // of 3, "3" or "1,3"

// Takes over the members of an object into another, those of its objects one by one.
void mergeInto(Json::Value& kept, const Json::Value& named);

Reply jsonReply(const Json::Value& json);
// {"statusCode":1,"statusString":"OK","subStatusCode":"ok"}, to which an answer adds its own members.
Json::Value okJson();

}  // namespace veltasim
