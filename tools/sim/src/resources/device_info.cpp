#include <array>
#include <charconv>

#include "resources/resource.h"
#include "xml.h"

namespace veltasim {
namespace {

using Valid = bool (*)(const std::string&);

bool anyText(const std::string&) {
    return true;
}
bool isName(const std::string& text) {
    return text.size() <= 32;
}
bool isTelecontrolId(const std::string& text) {
    unsigned number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end && number >= 1 && number <= 255;
}

struct Element {
    const char* name;
    std::string DeviceInfo::*member;
    Valid valid;  // null: cannot be written, and is ignored where it comes
};

constexpr std::array kElements{
    Element{"deviceName", &DeviceInfo::deviceName, isName},
    Element{"deviceID", &DeviceInfo::deviceId, nullptr},
    Element{"deviceDescription", &DeviceInfo::deviceDescription, anyText},
    Element{"location", &DeviceInfo::location, nullptr},
    Element{"systemContact", &DeviceInfo::systemContact, anyText},
    Element{"model", &DeviceInfo::model, nullptr},
    Element{"serialNumber", &DeviceInfo::serialNumber, nullptr},
    Element{"macAddress", &DeviceInfo::macAddress, nullptr},
    Element{"firmwareVersion", &DeviceInfo::firmwareVersion, nullptr},
    Element{"firmwareReleasedDate", &DeviceInfo::firmwareReleasedDate, nullptr},
    Element{"bootVersion", &DeviceInfo::bootVersion, nullptr},
    Element{"bootReleasedDate", &DeviceInfo::bootReleasedDate, nullptr},
    Element{"hardwareVersion", &DeviceInfo::hardwareVersion, nullptr},
    Element{"deviceType", &DeviceInfo::deviceType, nullptr},
    Element{"telecontrolID", &DeviceInfo::telecontrolId, isTelecontrolId},
};

}  // namespace

Reply getDeviceInfo(const Call& call) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "DeviceInfo");
    for (const Element& element : kElements)
        addText(root, element.name, call.state.deviceInfo.*element.member);
    return {200, kXmlType, toText(document)};
}

Reply putDeviceInfo(const Call& call) {
    pugi::xml_document document;
    if (auto refusal = readDocument(call, "DeviceInfo", document)) return *refusal;

    DeviceInfo changed = call.state.deviceInfo;
    for (const Element& element : kElements) {
        const pugi::xml_node node = document.document_element().child(element.name);
        if (!node || !element.valid) continue;
        const std::string text = node.text().get();
        if (!element.valid(text)) return refused(call, badParameter(element.name));
        changed.*element.member = text;
    }
    call.state.deviceInfo = std::move(changed);
    return done(call);
}

}  // namespace veltasim
