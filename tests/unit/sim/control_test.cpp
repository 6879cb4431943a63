#include <veltasim/control.h>

#include <gmock/gmock.h>
#include <json/json.h>

#include "client.h"

using testing::HasSubstr;
using velta_test::Answer;
using velta_test::kSoon;
using velta_test::Subscriber;

namespace {

class Control : public testing::Test {
 protected:
    void SetUp() override {
        first.start();
        second.start();
        server.emplace(std::vector<veltasim::Device*>{&first, &second}, 0);
        client.emplace(server->url());
    }

    veltasim::Device first{{.identity = veltasim::Identity::numbered(0)}};
    veltasim::Device second{{.identity = veltasim::Identity::numbered(1)}};
    std::optional<veltasim::ControlServer> server;
    std::optional<velta_test::Client> client;
};

TEST_F(Control, steersOneDeviceOrAll) {
    Subscriber atFirst(first);
    Subscriber atSecond(second);
    ASSERT_TRUE(first.waitForStreams(1, kSoon) && second.waitForStreams(1, kSoon));
    client->send("POST", "/control/event?device=1",
                 R"({"name":"Zoe","doorNo":3,"picture":"small","moreMembers":{"a":[1]}})");
    client->send("POST", "/control/event", R"({"eventType":"theEnd","count":2})");
    EXPECT_THAT(atFirst.waitFor("theEnd", 2), testing::Not(HasSubstr("Zoe")));
    EXPECT_THAT(atSecond.waitFor("theEnd", 2), HasSubstr("image/jpeg"));
    EXPECT_THAT(atSecond.waitFor("theEnd", 2), HasSubstr("\"Zoe\""));

    EXPECT_THAT(client->get("/control/requests?device=1").body, HasSubstr("alertStream"));
    client->send("POST", "/control/streams", R"({"end":"after-queue"})");
    EXPECT_EQ(atFirst.waitForEnd(), CURLE_OK);
    client->send("POST", "/control/fault?device=0", R"({"kind":"slow","amount":50,"count":2})");
    EXPECT_EQ(first.faults().at(0).amount, 50);
    EXPECT_THAT(client->get("/control/faults").body, HasSubstr("\"slow\""));
    client->send("DELETE", "/control/faults");
    EXPECT_THAT(first.faults(), testing::IsEmpty());
    client->send("POST", "/control/clock?device=1", R"({"time":86400,"timeZone":"CST+1:00:00"})");
    EXPECT_THAT(client->get("/control/devices?device=1").body, HasSubstr("\"CST+1:00:00\""));
    EXPECT_LT(second.deviceTime(), first.deviceTime());
    client->send("POST", "/control/answer", R"({"path":"/VELTA/x","status":201,"body":"<x/>"})");
    EXPECT_EQ(velta_test::Client(second).get("/VELTA/x").status, 201);
    client->send("DELETE", "/control/answers");
    EXPECT_EQ(velta_test::Client(first).get("/VELTA/x").status, 404);
    client->send("POST", "/control/lock", R"({"seconds":60})");
    EXPECT_TRUE(second.isLocked());
    client->send("POST", "/control/power?device=1", R"({"on":false})");
    EXPECT_FALSE(second.isOn());
    EXPECT_TRUE(first.isOn());
}

TEST_F(Control, refusesNonsense) {
    struct Case {
        const char* method;
        const char* target;
        const char* body;
        long status;
    };
    const Case cases[] = {
        {"GET", "/control/nothing", "", 404},
        {"GET", "/control/requests?device=2", "", 400},
        {"GET", "/control/requests?after=x", "", 400},
        {"POST", "/control/event", "[1]", 400},
        {"POST", "/control/event", R"({"doorNumber":1})", 400},
        {"POST", "/control/event", R"({"doorNo":"one"})", 400},
        {"POST", "/control/event", R"({"picture":"huge"})", 400},
        {"POST", "/control/fault", R"({"kind":"gremlins"})", 400},
        {"POST", "/control/streams", R"({"end":"soon"})", 400},
        {"POST", "/control/answer", R"({"status":200})", 400},
        {"POST", "/control/answer", R"({"path":"/x","status":99})", 400},
    };
    for (const Case& c : cases) {
        const Answer answer = client->send(c.method, c.target, c.body);
        EXPECT_EQ(answer.status, c.status) << c.target << ' ' << c.body;
        EXPECT_THAT(answer.body, HasSubstr("\"error\""));
    }
}

}  // namespace
