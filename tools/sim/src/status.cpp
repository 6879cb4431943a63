#include "status.h"

#include <array>

#include "json_text.h"
#include "xml.h"

namespace veltasim {
namespace {

constexpr std::array kStatusTexts{"",
                                  "OK",
                                  "Device Busy",
                                  "Device Error",
                                  "Invalid Operation",
                                  "Invalid Format",
                                  "Content Error",
                                  "Reboot Required"};

const char* textOf(Status::Code code) {
    return kStatusTexts.at(static_cast<size_t>(code));
}

std::string statusXml(const std::string& target, const Status& status) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "ResponseStatus");
    addText(root, "requestURL", target);
    addText(root, "statusCode", std::to_string(static_cast<int>(status.code)));
    addText(root, "statusString", textOf(status.code));
    addText(root, "subStatusCode", status.subStatus);
    if (status.errorCode != 0) {
        addText(root, "errorCode", std::to_string(status.errorCode));
        addText(root, "errorMsg", status.errorMessage);
    }
    return toText(document);
}

}  // namespace

std::string statusJson(const Status& status) {
    JsonText json;
    json.add("statusCode", static_cast<int64_t>(status.code))
        .add("statusString", textOf(status.code))
        .add("subStatusCode", status.subStatus);
    if (status.errorCode != 0) json.add("errorCode", status.errorCode).add("errorMsg", status.errorMessage);
    return json.text();
}

Reply statusReply(const std::string& target, int httpStatus, const Status& status) {
    if (target.find("format=json") != std::string::npos) return {httpStatus, kJsonType, statusJson(status)};
    return {httpStatus, kXmlType, statusXml(target, status)};
}

}  // namespace veltasim
