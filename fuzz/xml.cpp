// XML documents of devices, each with every reader that may get it.
//
// Input: the position of a reader, the document.

#include <iterator>

#include "fake_device.h"
#include "gateway/CXmlBase.h"
#include "gateway/JsonText.h"
#include "translate/system/NetworkInterfaces.h"

namespace {

const fuzz::DeviceAnswer kFourDoors{
    200, R"(<RemoteControlDoor><cmd opt="open,close"/><doorNo min="1" max="4"/></RemoteControlDoor>)"};

void requireJson(const std::string& text) {
    Json::Value root;
    fuzz::require(velta::parseJson(text, root) && root.isObject(), "a document becomes a JSON object");
}

// What the host reads of the network it may write back.
void network(const std::string& document, const char* root) {
    std::string json;
    if (!velta::transNetworkXml2Json(json, document, root)) return;
    requireJson(json);
    Json::Value body;
    velta::parseJson(json, body);
    std::string written;
    if (!velta::transNetworkJson2Xml(written, body, root)) return;
    std::string again;
    fuzz::require(velta::transNetworkXml2Json(again, written, root), "a written document can be read");
}

std::string parsed(const char* text) {
    CXmlBase xml;
    return xml.Parse(text) != nullptr ? xml.WriteToBuf() : "";
}

// Nothing behind the end of a text may become a part of it.
void readToItsEnd(const std::string& document) {
    const std::string text(document.c_str());
    const std::string more = text + '\0' + R"(   "/><more/>)";
    fuzz::require(parsed(text.c_str()) == parsed(more.c_str()), "a document ends with its text");
}

/* The session's device answers each request with the document, unless the reader scripts more. */
using Reader = void (*)(CVeltaDevice& device, const std::string& document);

constexpr Reader kReaders[] = {
    [](CVeltaDevice& device, const std::string& document) {
        std::string answer;
        const uint32_t code = device.parseVELTAResponseStatus(answer, document);
        if (!answer.empty()) requireJson(answer);
        fuzz::require(code != VELTA_OK || answer.empty(), "success has no status of its own");
    },
    [](CVeltaDevice&, const std::string& document) {
        std::string answer;
        if (CVeltaDevice::transDeviceInfoXml2Json(answer, document)) requireJson(answer);
    },
    [](CVeltaDevice&, const std::string& document) {
        std::string answer;
        if (CVeltaDevice::transTimeMngXml2Json(document, answer)) requireJson(answer);
    },
    [](CVeltaDevice&, const std::string& document) { network(document, "NetworkInterfaceList"); },
    [](CVeltaDevice&, const std::string& document) { network(document, "NetworkInterface"); },
    [](CVeltaDevice&, const std::string& document) { network(document, "IPAddress"); },
    [](CVeltaDevice&, const std::string& document) { CVeltaDevice::isValidOutputFormVelta(document); },
    [](CVeltaDevice& device, const std::string& document) {
        fuzz::setAnswers({{401, document}});  // why the user was refused
        device.veltaStatusCheck();
    },
    [](CVeltaDevice& device, const std::string&) {
        std::string answer(512, ' ');
        device.DeviceLoop(answer.data(), static_cast<unsigned>(answer.size()));
    },
    [](CVeltaDevice& device, const std::string&) { device.hasOutput(1); },
    [](CVeltaDevice& device, const std::string&) {
        std::string answer;
        device.veltaGetAcsCapabilities(answer);
        requireJson(answer);
    },
    [](CVeltaDevice& device, const std::string&) {
        std::string answer;
        if (device.veltaGetRemoteDoorCap(answer) != VELTA_OK && !answer.empty()) requireJson(answer);
    },
    [](CVeltaDevice& device, const std::string& document) {
        fuzz::setAnswers({kFourDoors, {200, document}});
        std::string answer;
        if (device.veltaGetDoorParam(answer, "/VELTA/AccessControl/Door/param/4") == VELTA_OK)
            requireJson(answer);
    },
    [](CVeltaDevice& device, const std::string&) {
        std::string answer;
        const velta::HostBody body{R"({"CaptureFingerPrintCond":{"fingerNo":1}})", {}};
        if (device.veltaCaptureAcsFp(answer, "", body) == VELTA_OK && !answer.empty()) requireJson(answer);
    },
    [](CVeltaDevice& device, const std::string&) {
        std::string answer;
        if (device.veltaGetAcsFpCaptureCapabilities(answer, "/") == VELTA_OK) requireJson(answer);
    },
    [](CVeltaDevice& device, const std::string&) {
        std::string answer;
        if (device.veltaGetEventHost(answer, "/") == VELTA_OK) requireJson(answer);
    },
    [](CVeltaDevice& device, const std::string&) { device.isValidHostID("2"); },
    [](CVeltaDevice& device, const std::string& document) {
        fuzz::connect(device, "DeviceName=East gate;");
        fuzz::setAnswers({{200, ""}, {200, document}});
        device.veltaStatusCheck();  // which writes the name into the document
    },
    [](CVeltaDevice&, const std::string& document) { readToItsEnd(document); },
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const Reader read = kReaders[input.byte() % std::size(kReaders)];
    const std::string document(input.rest());
    CVeltaDevice device;
    fuzz::connect(device);
    fuzz::setAnswers({{200, document}});
    read(device, document);
    return 0;
}
