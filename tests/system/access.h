/* Access-control requests of a host through the built library, to a device that answers by a script. */
#pragma once

#include <vector>

#include "fixture.h"

namespace host {

inline const std::string kOk = R"({"statusCode":1,"statusString":"OK","subStatusCode":"ok"})";
inline const std::string kBadParameter = "0x60000001";
inline const std::string kBadJsonContent = "0x60000017";

/* The error number of a status as "0x60000001", any other answer as it is. */
inline std::string outcome(const std::string& answer) {
    Json::Value json;
    std::istringstream text(answer);
    Json::CharReaderBuilder reader;
    if (!Json::parseFromStream(reader, text, &json, nullptr) || !json.isObject() ||
        !json.isMember("errorMsg"))
        return answer;
    std::ostringstream number;
    number << "0x" << std::hex << std::uppercase << json["errorCode"].asUInt();
    return number.str();
}

class AccessTest : public SessionTest {
 protected:
    AccessTest() : SessionTest({.auth = veltasim::AuthScheme::None}) {}

    /* What the device answers from now on. */
    void script(const std::string& method, const std::string& path, const std::string& answer,
                int httpStatus = 200) {
        device.setAnswer(method, path, httpStatus, answer);
    }

    std::string ask(const std::string& method, const std::string& path, const std::string& body = "") {
        device.forgetRequests();
        return outcome(session->request(method, path + "?format=json", body));
    }

    /* The requests since the last ask, as "METHOD target body". */
    std::vector<std::string> sent() {
        std::vector<std::string> lines;
        for (const auto& request : device.requests()) {
            if (request.target != "/VELTA/Security/userCheck")
                lines.push_back(request.method + " " + request.target + " " + request.body);
        }
        return lines;
    }

    /* Each body is refused, and the device is not asked. */
    void refuses(const std::string& method, const std::string& path, const std::vector<std::string>& bodies) {
        for (const std::string& body : bodies) {
            EXPECT_EQ(ask(method, path, body), kBadParameter) << path << " " << body;
            EXPECT_THAT(sent(), testing::IsEmpty()) << path << " " << body;
        }
    }
    /* The body reaches the device as it is written here, and the device's answer comes back so. */
    void relays(const std::string& method, const std::string& path, const std::string& body) {
        script(method, path, kOk);
        EXPECT_EQ(ask(method, path, body), kOk) << path << " " << body;
        EXPECT_THAT(sent(), testing::ElementsAre(method + " " + path + "?format=json " + body));
    }
    /* What each answer of the device becomes for the host. */
    struct Judgement {
        std::string deviceAnswer;
        std::string hostAnswer;
        int httpStatus = 200;
    };
    void judges(const std::string& method, const std::string& path, const std::string& body,
                const std::vector<Judgement>& judgements) {
        for (const Judgement& judgement : judgements) {
            script(method, path, judgement.deviceAnswer, judgement.httpStatus);
            EXPECT_EQ(ask(method, path, body), judgement.hostAnswer) << path << " " << judgement.deviceAnswer;
        }
    }
};

}  // namespace host
