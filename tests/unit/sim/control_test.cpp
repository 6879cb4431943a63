#include <veltasim/control.h>

#include "client.h"

using namespace velta_test;
using testing::HasSubstr;

namespace {

TEST(Control, steersOneDeviceOrAll) {
    veltasim::Device first{{.identity = veltasim::Identity::numbered(0)}};
    veltasim::Device second{{.identity = veltasim::Identity::numbered(1)}};
    first.start();
    second.start();
    const veltasim::ControlServer server({&first, &second}, 0);
    Client client(server.url());
    Subscriber atFirst(first);
    Subscriber atSecond(second);
    ASSERT_TRUE(first.waitForStreams(1, kSoon) && second.waitForStreams(1, kSoon));
    client.talk("/control/", R"(
POST event?device=1 {"name":"Zoe","doorNo":3,"picture":"small","moreMembers":{"a":[1]}} -> 200
POST event {"eventType":"theEnd","count":2} -> 200
GET requests?device=1 -> 200 alertStream)");
    EXPECT_THAT(atFirst.waitFor("theEnd", 2), testing::Not(HasSubstr("Zoe")));
    EXPECT_THAT(atSecond.waitFor("theEnd", 2), testing::AllOf(HasSubstr("image/jpeg"), HasSubstr("\"Zoe\"")));
    client.talk("/control/", R"(
POST streams {"end":"after-queue"} -> 200
POST fault?device=0 {"kind":"slow","amount":50,"count":2} -> 200
GET faults -> 200 [{"amount":50,"count":2,"kind":"slow"
DELETE faults -> 200
GET faults -> 200 []
POST clock?device=1 {"time":86400,"timeZone":"CST+1:00:00"} -> 200
GET devices?device=1 -> 200 "CST+1:00:00"
POST answer {"path":"/VELTA/x","status":201,"body":"<x/>"} -> 200)");
    EXPECT_TRUE(atFirst.waitForEnd());
    EXPECT_LT(second.deviceTime(), first.deviceTime());
    EXPECT_EQ(Client(second).get("/VELTA/x").status, 201);
    client.talk("/control/", R"(
DELETE answers -> 200
POST lock?device=1 {"seconds":60} -> 200
POST power?device=1 {"on":false} -> 200
GET nothing -> 404 "error"
GET requests?device=2 -> 400 "error"
POST event {"doorNumber":1} -> 400 "error"
POST event {"picture":"huge"} -> 400 "error"
POST fault {"kind":"gremlins"} -> 400 "error"
POST card?device=1 {"cardNo":"1"} -> 400 "the device is off"
POST answer {"path":"/x","status":99} -> 400 "error")");
    EXPECT_EQ(Client(first).get("/VELTA/x").status, 404);
    EXPECT_TRUE(second.isLocked() && !second.isOn() && first.isOn());
}

}  // namespace
