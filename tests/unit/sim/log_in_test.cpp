#include <gmock/gmock.h>

#include <atomic>
#include <list>

#include "client.h"

using namespace std::chrono_literals;
using testing::HasSubstr;
using velta_test::Answer;
using velta_test::Client;
using veltasim::AuthScheme;

namespace {

constexpr const char* kUserCheck = "/VELTA/Security/userCheck";

class LogIn : public testing::TestWithParam<std::pair<AuthScheme, const char*>> {};

TEST_P(LogIn, locksTheUserAfterFailuresInARow) {
    veltasim::Device device({.auth = GetParam().first, .maxFailedLogins = 2});
    device.start();
    const auto check = [&device](const char* password) { return Client(device, password).get(kUserCheck); };

    EXPECT_THAT(check("wrong").body, HasSubstr("<retryLoginTime>1</retryLoginTime>"));
    const Answer good = check("velta-sim-1");
    EXPECT_EQ(good.status, 200);
    EXPECT_THAT(good.body, HasSubstr("<statusValue>200</statusValue>"));
    EXPECT_THAT(device.requests().back().header("authorization"), HasSubstr(GetParam().second));

    const Answer refused = check("wrong");  // success had forgiven the first
    EXPECT_EQ(refused.status, 401);
    EXPECT_THAT(refused.header, HasSubstr("WWW-Authenticate: "));
    EXPECT_THAT(refused.body,
                HasSubstr("<statusString>Unauthorized</statusString>\n"
                          "<lockStatus>unlock</lockStatus>\n<retryLoginTime>1</retryLoginTime>"));
    EXPECT_FALSE(device.isLocked());
    check("wrong");
    EXPECT_TRUE(device.isLocked());
    const Answer locked = check("velta-sim-1");
    EXPECT_EQ(locked.status, 401);
    EXPECT_THAT(locked.body, HasSubstr("<lockStatus>lock</lockStatus>\n<unlockTime>"));
    device.unlockUser();
    EXPECT_EQ(check("velta-sim-1").status, 200);
}

INSTANTIATE_TEST_SUITE_P(Schemes, LogIn,
                         testing::Values(std::pair(AuthScheme::Digest, "algorithm=md5"),
                                         std::pair(AuthScheme::DigestSha256, "algorithm=sha-256"),
                                         std::pair(AuthScheme::Basic, "Basic ")));

TEST(LogIn, noneAsksForNothing) {
    veltasim::Device device({.auth = AuthScheme::None});
    device.start();
    EXPECT_EQ(Client(device, "wrong").get(kUserCheck).status, 200);
    EXPECT_EQ(device.requests().size(), 1U);
}

TEST(LogIn, theLockEndsByItself) {
    veltasim::Device device({.maxFailedLogins = 1, .lockTime = 1s});
    device.start();
    Client(device, "wrong").get(kUserCheck);
    EXPECT_EQ(Client(device).get(kUserCheck).status, 401);
    const auto deadline = std::chrono::steady_clock::now() + velta_test::kSoon;
    while (device.isLocked() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    EXPECT_EQ(Client(device).get(kUserCheck).status, 200);
}

// A client that comes back after a restart of the device still uses the nonce of before.
TEST(LogIn, anOldNonceIsNoFailure) {
    veltasim::Device device({.maxFailedLogins = 1});
    device.start();
    Client client(device);
    EXPECT_EQ(client.get(kUserCheck).status, 200);
    device.powerOff();
    device.powerOn();
    EXPECT_EQ(client.get(kUserCheck).status, 200);
    device.setFault({.kind = veltasim::FaultKind::StaleNonce, .count = 1});
    EXPECT_EQ(client.get(kUserCheck).status, 200);

    std::vector<int> statuses;
    for (const auto& request : device.requests())
        statuses.push_back(request.status);
    EXPECT_THAT(statuses, testing::ElementsAre(401, 200, 401, 200, 401, 200));
}

// Many clients come at the same time, and those that stay use their nonce for long.
TEST(LogIn, clientsDoNotDisturbEachOther) {
    veltasim::Device device({.maxFailedLogins = 1});
    device.start();
    Client steady(device);
    std::list<std::thread> clients;
    std::atomic<int> good = 0;
    for (int i = 0; i < 4; ++i) {
        clients.emplace_back([&] {
            for (int j = 0; j < 50; ++j)
                good += Client(device).get(kUserCheck).status == 200 ? 1 : 0;
        });
    }
    for (int j = 0; j < 50; ++j)
        good += steady.get(kUserCheck).status == 200 ? 1 : 0;
    for (std::thread& client : clients)
        client.join();
    EXPECT_EQ(good, 250);
    EXPECT_EQ(steady.get(kUserCheck).status, 200);
    EXPECT_FALSE(device.isLocked());
}

}  // namespace
