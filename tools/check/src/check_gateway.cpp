// Requests of the host: their envelope, what of it goes to the device, and what comes back.
#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "answers.h"
#include "check.h"
#include "library.h"

namespace check {
namespace {

void wrongEnvelopes(Trial& trial) {
    Scene scene(trial);
    for (const char* envelope :
         {"", "   ", "no JSON", "null", "[]", "5",
          R"([{"method":"GET","uri":"/VELTA/A?devIndex=1","body":""}])",
          R"({"method":"GET","uri":"/VELTA/A?devIndex=1","body":"")",
          R"({"uri":"/VELTA/A?devIndex=1","body":""})",
          R"({"method":null,"uri":"/VELTA/A?devIndex=1","body":""})", R"({"method":"GET","body":""})",
          R"({"method":"GET","url":"/VELTA/A?devIndex=1","body":""})",
          R"({"method":"GET","uri":5,"body":""})", R"({"method":"GET","uri":"/VELTA/A?devIndex=1"})",
          R"({"method":"PUT","uri":"/VELTA/A?devIndex=1","body":{"a":1}})",
          R"({"method":"PUT","uri":"/VELTA/A?devIndex=1","body":null})"})
        isStatus(trial, std::string("answer to ") + shown(envelope), kBadParameter,
                 scene.session.ask(envelope));
    trial.number("requests at the device", 0, scene.requests().size());
}

void nullRequest(Trial& trial) {
    Scene scene(trial);
    char answer[1024] = {};
    trial.code("VELTA_Getway of a null request", VELTA_OK,
               scene.session.gateway().VELTA_Getway(scene.session.instance(), nullptr, answer, sizeof answer,
                                                    nullptr));
    isStatus(trial, "its answer", kBadParameter, answer);
    trial.number("requests at the device", 0, scene.requests().size());
}

void goodEnvelopes(Trial& trial) {
    Scene scene(trial);
    scene.device.setAnswer("GET", kPath, 200, "<Answer/>");
    const std::string members = R"("method":"GET","uri":")" + kUri + R"(","body":"")";
    for (const std::string& envelope :
         {"{" + members + "}", "   {" + members + "}   ", "{" + members + R"(,"more":[1,{"a":null}]})",
          "{\n\t" + members + "\n}"})
        trial.text("answer to " + shown(envelope), "<Answer/>", scene.session.ask(envelope));
}

struct StatusRow {
    const char* method;
    const char* uri;
    int statusCode;
    uint32_t errorCode;
    const char* statusString;
    const char* subStatusCode;
    const char* errorMsg;
};
constexpr StatusRow kStatuses[] = {
    {"PUT", "/VELTA/System/reboot?format=json", 1, kOk, "OK", "ok", "Operation completed."},
    {"GET", "/VELTA/System/reboot?format=json", 4, kNotSupported, "Invalid Operation", "notSupport",
     "Not supported."},
    {"GET", "/VELTA/Any", 4, kUnknown, "Invalid Operation", "unKnownErrorCode", "Unknown error code."},
    {"GET", "/VELTA/Any?x=1", 6, kBadParameter, "Content Error", "badParameters", "Incorrect parameter."},
};

void statusJson(Trial& trial) {
    Scene scene(trial);
    for (const StatusRow& row : kStatuses) {
        const std::string what = std::string("status of ") + row.subStatusCode;
        const std::string answer = scene.session.request(row.method, row.uri);
        const Json::Value status = mustBeObject(trial, what, answer);
        trial.number(what + ": members", 5, status.size());
        trial.number(what + ": statusCode", row.statusCode, status["statusCode"].asInt());
        trial.text(what + ": statusString", row.statusString, status["statusString"].asString());
        trial.text(what + ": subStatusCode", row.subStatusCode, status["subStatusCode"].asString());
        trial.code(what + ": errorCode", row.errorCode, status["errorCode"].asUInt());
        trial.text(what + ": errorMsg", row.errorMsg, status["errorMsg"].asString());
        trial.holds(what + " is one line with a line feed at its end",
                    answer.find('\n') == answer.size() - 1);
    }
}

void cutAnswers(Trial& trial) {
    Scene scene(trial);
    const std::string whole = "0123456789";
    scene.device.setAnswer("GET", kPath, 200, whole);
    std::string envelope = R"({"method":"GET","uri":")" + kUri + R"(","body":""})";
    const auto& gateway = scene.session.gateway();
    for (const unsigned size : {0U, 1U, 5U, 10U, 11U, 20U}) {
        char answer[64];
        std::memset(answer, '#', sizeof answer);
        const std::string what = "answer in a buffer of " + std::to_string(size) + " bytes";
        trial.code(what, VELTA_OK,
                   gateway.VELTA_Getway(scene.session.instance(), envelope.data(), answer, size, nullptr));
        trial.holds(
            what + ": nothing is written behind it",
            std::string(answer + size, sizeof answer - size).find_first_not_of('#') == std::string::npos);
        if (size > 0) trial.text(what, whole.substr(0, size - 1), answer);
    }
    trial.code("VELTA_Getway without a buffer", VELTA_OK,
               gateway.VELTA_Getway(scene.session.instance(), envelope.data(), nullptr, 100, nullptr));
}

void concurrent(Trial& trial) {
    constexpr int kThreads = 8;
    constexpr int kRequests = 10;
    // A digest log-in may be refused as stale when another one came between.
    Scene scene(trial, {.auth = veltasim::AuthScheme::Basic});
    std::atomic<int> wrong{0};
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        const std::string path = kPath + std::to_string(i);
        scene.device.setAnswer("GET", path, 200, path);
        threads.emplace_back([&, path] {
            for (int round = 0; round < kRequests; ++round)
                wrong += scene.session.request("GET", path + "?devIndex=1") == path ? 0 : 1;
        });
    }
    threads.clear();
    trial.number("wrong answers", 0, wrong.load());
}

constexpr Check kChecks[] = {
    {"gateway", "wrong-envelopes", "an envelope that is not as promised gives 0x60000001, and no request",
     wrongEnvelopes},
    {"gateway", "null-request", "a null request gives the status of 0x60000001", nullRequest},
    {"gateway", "good-envelopes", "blanks around the envelope, and further members, pass", goodEnvelopes},
    {"gateway", "status-json", "a status has its five members, on one line", statusJson},
    {"gateway", "cut-answers", "an answer is cut to the buffer, with its zero, and the result is 0",
     cutAnswers},
    {"gateway", "concurrent", "several requests of one session at once get their own answers", concurrent},
};

}  // namespace

std::span<const Check> gatewayChecks() {
    return kChecks;
}

}  // namespace check
