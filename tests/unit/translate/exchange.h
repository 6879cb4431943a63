/* Whole operations with a device that answers by a script. */
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "../platform/scripted_server.h"
#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"

namespace exchange {

inline std::string http(int status, const std::string& body) {
    return "HTTP/1.1 " + std::to_string(status) +
           " Answer\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
           body;
}
inline std::string ok(const std::string& body) {
    return http(200, body);
}
inline std::string status(int code) {
    return "<ResponseStatus><statusCode>" + std::to_string(code) + "</statusCode></ResponseStatus>";
}

using Operation = std::function<uint32_t(CVeltaDevice&, std::string&)>;

// Runs an operation with a device that gives these answers, one a request; returns what the device was sent.
inline std::vector<std::string> run(const Operation& operation, const std::vector<std::string>& answers,
                                    uint32_t& code, std::string& answer) {
    std::vector<Answer> script;
    script.reserve(answers.size());
    for (const std::string& bytes : answers)
        script.push_back({bytes, Answer::Then::kClose});
    const ScriptedServer server(script);
    CVeltaDevice device;
    std::string url =
        "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(server.port()) + ";DevIndex=t;";
    std::string user = "u";
    EXPECT_EQ(device.Connect_V2(url.data(), user.data(), user.data()), 0);
    code = operation(device, answer);
    device.DisConnect();
    return server.requests();
}

struct Case {
    Operation operation;
    std::vector<std::string> answers;
    uint32_t code;
    std::string answer = "";   // its start; empty: the whole
    std::string request = "";  // the last one, without its headers; empty: any
};

inline void check(const std::vector<Case>& cases) {
    for (size_t row = 0; row < cases.size(); ++row) {
        SCOPED_TRACE(row);
        const Case& c = cases[row];
        uint32_t code = 1;
        std::string answer;
        const std::vector<std::string> requests = run(c.operation, c.answers, code, answer);
        EXPECT_EQ(code, c.code);
        EXPECT_TRUE(c.answer.empty() ? answer.empty() : answer.starts_with(c.answer)) << answer;
        ASSERT_EQ(requests.size(), c.answers.size());
        if (c.request.empty()) continue;
        const std::string& last = requests.back();
        EXPECT_EQ(last.substr(0, last.find(" HTTP")) + " " + last.substr(last.find("\r\n\r\n") + 4),
                  c.request);
    }
}

}  // namespace exchange
