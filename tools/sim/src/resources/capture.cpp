#include "base64.h"
#include "json_values.h"
#include "resources/access.h"
#include "xml.h"

namespace veltasim {
namespace {

constexpr const char* kCondition = "CaptureFingerPrintCond";
constexpr const char* kResult = "CaptureFingerPrint";

void addLimits(pugi::xml_node& parent, const char* name, int min, int max) {
    pugi::xml_node node = parent.append_child(name);
    node.append_attribute("min") = min;
    node.append_attribute("max") = max;
}

}  // namespace

// No two captures are the same, as with real fingers.
Reply postCapture(const Call& call) {
    pugi::xml_document condition;
    if (auto refusal = readDocument(call, kCondition, condition)) return *refusal;
    const auto finger = numbersOf(condition.document_element().child("fingerNo").text().get());
    if (finger.size() != 1 || finger[0] < 1 || finger[0] > 10) return refused(call, badParameter("fingerNo"));

    const unsigned count = ++call.state.access.captured;
    const std::string number = std::to_string(finger[0]);
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, kResult);
    addText(root, "fingerData", base64("finger " + number + ", capture " + std::to_string(count)));
    addText(root, "fingerNo", number);
    addText(root, "fingerPrintQuality", std::to_string(80 + count % 20));
    return {200, kXmlType, toText(document)};
}

Reply getCaptureCapabilities(const Call&) {
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, kResult);
    pugi::xml_node condition = root.append_child(kCondition);
    addLimits(condition, "fingerNo", 1, 10);
    addLimits(root, "fingerData", 1, 768);
    addLimits(root, "fingerNo", 1, 10);
    addLimits(root, "fingerPrintQuality", 1, 100);
    return {200, kXmlType, toText(document)};
}

}  // namespace veltasim
