// What of a host's request goes to the device, and what of the device's answer comes back.
#include "answers.h"
#include "check.h"
#include "library.h"

namespace check {
namespace {

void forwarding(Trial& trial) {
    Scene scene(trial);
    const std::string answer = "<Answer>\r\n  as it \xC3\xA4s</Answer>\n";
    for (const auto& [method, body] :
         {std::pair{"GET", ""}, {"PUT", "<A b=\"1\"> \n</A>"}, {"POST", "{\"a\": 1}"}, {"DELETE", ""}}) {
        scene.device.setAnswer(method, kPath, 200, answer);
        scene.device.forgetRequests();
        trial.text(std::string("answer to ") + method, answer, scene.session.request(method, kUri, body));
        const auto requests = scene.requests();
        trial.must(trial.holds("the request comes to the device", !requests.empty()));
        trial.text("method", method, requests.back().method);
        trial.text("target", kPath, requests.back().target);
        trial.text("body", body, requests.back().body);
        if (*body != '\0')
            trial.text("type of the body", "application/xml;charset=UTF-8",
                       requests.back().header("Content-Type"));
    }
}

void hostParameter(Trial& trial) {
    Scene scene(trial);
    for (const auto& [uri, target] : {std::pair{"/VELTA/A?devIndex=2", "/VELTA/A"},
                                      {"/VELTA/A?devIndex=2&x=1", "/VELTA/A&x=1"},
                                      {"/VELTA/A?x=1&devIndex=2", "/VELTA/A?x=1"},
                                      {"/VELTA/A?x=1&devIndex=2&y=3", "/VELTA/A?x=1&y=3"},
                                      {"/VELTA/A?x=1&devIndex=&y=3", "/VELTA/A?x=1&y=3"},
                                      {"/VELTA/A?devIndex=2?x=1", "/VELTA/A?x=1"}}) {
        scene.device.forgetRequests();
        scene.session.request("GET", uri);
        trial.text(std::string("target of ") + uri, target, scene.lastRequest().target);
    }
}

void notForwarded(Trial& trial) {
    Scene scene(trial);
    for (const auto& [uri, code] : {std::pair{"/VELTA/Any", kUnknown},
                                    {"", kUnknown},
                                    {"/VELTA/Any?x=1", kBadParameter},
                                    {"/VELTA/Any?devindex=1", kBadParameter},
                                    {"/VELTA/Any?devIndex", kBadParameter},
                                    {"/VELTA/Any?", kBadParameter}})
        isStatus(trial, "answer to " + shown(uri), code, scene.session.request("GET", uri));
    for (const char* method : {"get", "PATCH", "", "GET ", "HEAD"})
        isStatus(trial, "answer to the method " + shown(method), kBadParameter,
                 scene.session.request(method, kUri));
    trial.number("requests at the device", 0, scene.requests().size());
}

void deviceErrors(Trial& trial) {
    Scene scene(trial);
    const std::string body = "<ResponseStatus><statusCode>4</statusCode></ResponseStatus>";
    for (const int httpStatus : {400, 403, 404, 500, 503}) {
        scene.device.setAnswer("GET", kPath, httpStatus, body);
        trial.text("answer when the device says " + std::to_string(httpStatus), body,
                   scene.session.request("GET", kUri));
    }
    for (const int httpStatus : {200, 500}) {
        scene.device.setAnswer("GET", kPath, httpStatus, "");
        isStatus(trial, "answer when the device says " + std::to_string(httpStatus) + " and nothing else",
                 kUnknown, scene.session.request("GET", kUri));
    }
    scene.device.powerOff();
    isStatus(trial, "answer when the device is gone", kUnknown, scene.session.request("GET", kUri));
}

void deviceName(Trial& trial) {
    Scene scene(trial);
    scene.session.request("PUT", "/VELTA/System/deviceInfo?devIndex=1",
                          "<DeviceInfo><deviceName>South Gate</deviceName></DeviceInfo>");
    trial.text("name of the device", "South Gate", scene.device.deviceName());
    const auto requests = scene.requests();
    trial.must(trial.holds("the device was asked", !requests.empty()));
    trial.text("method of the last request", "PUT", requests.back().method);
    trial.contains("the document written", "<model>VA204</model>", requests.back().body);
}

struct TriggerRow {
    const char* method;
    const char* uri;
    const char* body;
    uint32_t code;
};
constexpr TriggerRow kTriggers[] = {
    {"PUT", "/VELTA/System/IO/outputs/2/trigger?devIndex=1", R"({"IOPortData":{"outputState":"high"}})", kOk},
    {"PUT", "/VELTA/System/IO/outputs/2/trigger?devIndex=1", R"({"IOPortData":{"outputState":"HIGH"}})",
     kBadParameter},
    {"PUT", "/VELTA/System/IO/outputs/2/trigger?devIndex=1", R"({"IOPortData":{"outputState":1}})",
     kBadParameter},
    {"PUT", "/VELTA/System/IO/outputs/2/trigger?devIndex=1", R"({"outputState":"low"})", kBadParameter},
    {"PUT", "/VELTA/System/IO/outputs/9/trigger?devIndex=1", R"({"IOPortData":{"outputState":"low"}})",
     kBadParameter},
    {"GET", "/VELTA/System/IO/outputs/2/trigger?devIndex=1", "", kNotSupported},
    {"PUT", "/VELTA/System/IO/outputs/2/trigger", R"({"IOPortData":{"outputState":"low"}})", kUnknown},
};

void trigger(Trial& trial) {
    Scene scene(trial);
    for (const TriggerRow& row : kTriggers) {
        const std::string what = std::string(row.method) + " " + row.uri + " " + row.body;
        isStatus(trial, "answer to " + what, row.code, scene.session.request(row.method, row.uri, row.body));
        trial.holds("output 2 is high after " + what, scene.device.outputIsHigh(2));
    }
    scene.session.request("PUT", "/VELTA/System/IO/outputs/02/trigger?devIndex=1", "<A/>");
    trial.text("target of outputs/02, which is forwarded", "/VELTA/System/IO/outputs/02/trigger",
               scene.lastRequest().target);
}

constexpr Check kChecks[] = {
    {"forwarding", "as-it-is", "method, body and answer are forwarded as they are", forwarding},
    {"forwarding", "host-parameter", "\"devIndex\" is taken out of the query, and nothing else",
     hostParameter},
    {"forwarding", "not-forwarded", "without query, \"devIndex\" or a known method nothing is forwarded",
     notForwarded},
    {"forwarding", "device-errors",
     "the body of a device's error is handed on; without one the code is unknown", deviceErrors},
    {"forwarding", "device-name", "a written name is put into the device's own document", deviceName},
    {"forwarding", "trigger",
     "an output is switched by \"high\" and \"low\" alone, if there is such an output", trigger},
};

}  // namespace

std::span<const Check> forwardingChecks() {
    return kChecks;
}

}  // namespace check
