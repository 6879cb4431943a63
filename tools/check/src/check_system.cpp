// Device information, clock and reboot, and what a device's status documents become.
#include "answers.h"
#include "check.h"
#include "library.h"

namespace check {
namespace {

const std::string kMark = "?format=json";

void deviceInfo(Trial& trial) {
    Scene scene(trial);
    const std::string uri = "/VELTA/System/deviceInfo" + kMark;
    Json::Value info =
        mustBeObject(trial, "device information", scene.session.request("GET", uri))["DeviceInfo"];
    trial.text("deviceName", "Access Controller", info["deviceName"].asString());
    trial.text("model", "VA204", info["model"].asString());
    trial.text("serialNumber", "VA204-000001", info["serialNumber"].asString());
    trial.text("telecontrolID, a text as all others", "255", info["telecontrolID"].asString());
    info["telecontrolID"] = 5;  // where a host writes it, it is a number
    Json::Value body;
    for (const auto& [length, code] : {std::pair{32U, kOk}, {33U, kBadParameter}}) {
        info["deviceName"] = std::string(length, 'n');
        body["DeviceInfo"] = info;
        isStatus(trial, "answer to a name of " + std::to_string(length) + " bytes", code,
                 scene.session.request("PUT", uri, body.toStyledString()));
    }
    trial.text("name of the device", std::string(32, 'n'), scene.device.deviceName());
}

void clock(Trial& trial) {
    Scene scene(trial);
    const std::string uri = "/VELTA/System/time" + kMark;
    const Json::Value time = mustBeObject(trial, "time", scene.session.request("GET", uri))["Time"];
    trial.text("timeMode", "manual", time["timeMode"].asString());
    trial.number("bytes of localTime", 25, time["localTime"].asString().size());
    const auto set = [&](const std::string& localTime) {
        return scene.session.request("PUT", uri,
                                     R"({"Time":{"timeMode":"manual","localTime":")" + localTime + "\"}}");
    };
    for (const auto& [offset, zone] : {std::pair{"+05:30", "CST-5:30:00"},
                                       {"-04:30", "CST+4:30:00"},
                                       {"+14:00", "CST-14:00:00"},
                                       {"+00:00", "CST+0:00:00"}}) {
        isStatus(trial, std::string("answer to the offset ") + offset, kOk,
                 set("2026-02-03T04:05:06" + std::string(offset)));
        trial.text(std::string("zone of the device at ") + offset, zone, scene.device.timeZone());
    }
    for (const char* wrong : {"2026-13-01T10:00:00Z", "2026-01-01T10:00:00+15:00", "2026-01-01T24:00:00Z",
                              "2026-01-01 10:00:00Z", "2026-01-01T10:00:00", "2026-01-01T10:00:00+0100", ""})
        isStatus(trial, "answer to " + shown(wrong), kBadParameter, set(wrong));
    trial.text("zone of the device after them", "CST+0:00:00", scene.device.timeZone());
}

void reboot(Trial& trial) {
    Scene scene(trial);
    isStatus(trial, "answer", kOk, scene.session.request("PUT", "/VELTA/System/reboot" + kMark, "{}"));
    const auto request = scene.lastRequest();
    trial.text("request", "PUT /VELTA/System/reboot", request.method + " " + request.target);
    trial.text("its Content-Length", "0", request.header("Content-Length"));
    trial.text("its body", "", request.body);
}

struct DeviceStatus {
    const char* document;
    uint32_t code;
};
constexpr DeviceStatus kDeviceStatuses[] = {
    {"<ResponseStatus><statusCode>1</statusCode></ResponseStatus>", kOk},
    {"<ResponseStatus><statusCode>0</statusCode><errorCode>5</errorCode></ResponseStatus>", kOk},
    {"<ResponseStatus><statusCode>4</statusCode></ResponseStatus>", 0x40000001},
    {"<ResponseStatus><statusCode>3</statusCode><errorCode>805306388</errorCode></ResponseStatus>",
     0x30000014},
    {"<ResponseStatus><statusCode>3</statusCode><errorCode>9</errorCode></ResponseStatus>", 0x4000111D},
    {"<ResponseStatus><statusString>OK</statusString></ResponseStatus>", kBadParameter},
    {"no XML", kBadParameter},
};

void deviceStatuses(Trial& trial) {
    Scene scene(trial);
    for (const DeviceStatus& row : kDeviceStatuses) {
        scene.device.setAnswer("PUT", "/VELTA/System/reboot", 200, row.document);
        isStatus(trial, std::string("answer when the device says ") + row.document, row.code,
                 scene.session.request("PUT", "/VELTA/System/reboot" + kMark));
    }
}

constexpr Check kChecks[] = {
    {"system", "device-info", "device information is JSON for the host; names have 32 bytes at most",
     deviceInfo},
    {"system", "clock", "a local time sets the device's zone; a malformed one sets nothing", clock},
    {"system", "reboot", "a reboot is an empty PUT with Content-Length 0", reboot},
    {"system", "device-statuses", "a device's status document becomes its error number", deviceStatuses},
};

}  // namespace

std::span<const Check> systemChecks() {
    return kChecks;
}

}  // namespace check
