// Sessions with devices that abuse HTTP, one for each trick, all at once: every call comes back, nobody learns the
// credentials, and nothing is collected or left behind.
#include <gmock/gmock.h>
#include <json/json.h>
#include <malloc.h>
#include <veltasim/hostile.h>

#include <algorithm>
#include <fstream>
#include <future>
#include <iostream>
#include <list>
#include <map>
#include <set>
#include <sstream>

#include "../stress/process.h"
#include "plugin.h"

using namespace host;
using testing::HasSubstr;
using testing::Not;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryIsOurs = false;  // sanitizers keep what was freed
#else
constexpr bool kMemoryIsOurs = true;
#endif
// The system may hold so much of a connection that nobody has read yet.
constexpr uint64_t kInSockets = uint64_t{40} << 20;
constexpr long kLargestPeakKiB = 1L << 20;
constexpr size_t kLargestRest = size_t{8} << 20;

struct Pair {
    Pair(Library& library, std::string_view name) : trick(name), session(library) {
        device.start();
        EXPECT_EQ(session.connectTo(device.port()), 0U);
    }
    const std::string trick;
    veltasim::HostileDevice device{"none"};
    Session session;
};

struct Request {
    const char* method;
    const char* uri;
    std::string body;
};
const Request kForwarded{"GET", "/VELTA/Some/Thing?format=json&devIndex=1", ""};
const std::vector<Request> kRequests{
    kForwarded,
    {"PUT", "/VELTA/Some/Thing?devIndex=1", std::string(50'000, 'x')},
    {"GET", "/VELTA/System/time?format=json", ""},
    {"PUT", "/VELTA/AccessControl/RemoteControl/door/1?format=json",
     R"({"RemoteControlDoor":{"cmd":"open"}})"},
    {"GET", "/VELTA/AccessControl/AcsWorkStatus?format=json", ""},
    {"POST", "/VELTA/Intelligent/FDLib/FaceDataRecord?format=json",
     R"({"FaceInfo":{"employeeNo":"1","hexImg":"ffd8ff"}})"},
};
// More than the system takes from a sender before the receiver has read any of it.
const Request kLarge{"PUT", "/VELTA/Some/Thing?devIndex=1", std::string(size_t{8} << 20, 'x')};

// How the body begins that a trick brings; nothing: the host gets a status that says that the exchange failed.
const std::map<std::string, std::set<std::string>> kBodies{
    {"<answer/>0123", {"large-body"}},
    {"--part\r\n", {"endless-body", "endless-pictures"}},
    {"and more", {"endless-chunks"}},
    {"<ans", {"length-too-small"}},
    {"\x1f\x8b\x08", {"gzip"}},
    {"x\x9c\xb3I\xcc", {"deflate"}},
    {"<answer/>",
     {"lengths-differ", "lengths-listed", "length-and-chunks", "redirect-to-itself", "redirect-elsewhere",
      "redirect-ftp", "redirect-file", "redirect-gopher", "log-in-for-ever", "log-in-unknown-schemes",
      "log-in-unknown-digest", "log-in-basic-only", "log-in-basic-after-digest", "gzip-transfer",
      "body-unread-answer", "answer-first", "close-after-answer", "reset-after-answer"}},
};
// Those that may also fail: the connection may break first, or the client break it off.
const std::set<std::string> kDoubtful{"log-in-basic-after-digest", "body-unread-answer", "answer-first",
                                      "reset-after-answer"};
// To a client that waits for events these are streams like any other.
const std::set<std::string> kStreams{"endless-body", "endless-pictures", "endless-chunks",
                                     "endless-chunk-extension"};

std::string ask(Session& session, const Request& request) {
    return session.request(request.method, request.uri, request.body, 65536);
}

bool isFailure(const std::string& answer) {
    Json::Value status;
    std::istringstream text(answer);
    return Json::parseFromStream(Json::CharReaderBuilder(), text, &status, nullptr) &&
           status["errorCode"].asUInt() > 1;
}

// A call that hangs can't be ended: it ends the test.
template <class Result>
Result inTime(std::future<Result> call, const std::string& name) {
    if (call.wait_for(kDeadline) != std::future_status::ready) {
        std::cerr << name << " hangs\n";
        std::abort();
    }
    return call.get();
}

// What the allocator keeps of freed memory depends on the order of the threads; what is in use does not.
size_t heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}
void forgetPeak() {
    std::ofstream("/proc/self/clear_refs") << 5;
}

struct Hostile : testing::Test {
    Library library;
    std::list<Pair> pairs;

    void connectAll() {
        for (const veltasim::HostileTrick& trick : veltasim::hostileTricks())
            pairs.emplace_back(library, trick.name);
        for (Pair& pair : pairs)
            ASSERT_TRUE(pair.session.waitForStatus(VELTA_STATUS_ONLINE));
    }
    void setTricks(bool hostile) {
        for (Pair& pair : pairs)
            pair.device.setTrick(hostile ? pair.trick : "none");
    }
    /* Everything is asked of all devices at once. */
    void askAll(const std::function<void(Pair&, const Request&, const std::string&)>& check) {
        struct Call {
            Pair& pair;
            const Request& request;
            std::future<std::string> answer;
        };
        std::list<Call> calls;
        for (Pair& pair : pairs) {
            for (const Request& request : kRequests)
                calls.push_back({pair, request,
                                 std::async(std::launch::async, [&] { return ask(pair.session, request); })});
        }
        for (Call& call : calls)
            check(call.pair, call.request, inTime(std::move(call.answer), call.pair.trick));
    }
    void askHostile();
    void armHostile();
    void armOne(Pair& pair);
    void checkCredentials();
};

void Hostile::askHostile() {
    setTricks(true);
    std::map<std::string, uint64_t> sent, connections;
    for (Pair& pair : pairs) {
        sent[pair.trick] = pair.device.bytesSent();
        connections[pair.trick] = pair.device.connections();
    }
    askAll([](Pair& pair, const Request& request, const std::string& answer) {
        if (pair.trick == "none") return;
        const auto body =
            std::ranges::find_if(kBodies, [&](const auto& row) { return row.second.contains(pair.trick); });
        const bool brought = body != kBodies.end() && answer.starts_with(body->first);
        EXPECT_TRUE(brought || isFailure(answer)) << pair.trick << " " << request.uri << " " << answer;
        if (body != kBodies.end() && &request == kRequests.data() && kDoubtful.count(pair.trick) == 0) {
            EXPECT_TRUE(brought) << pair.trick << " " << answer;
        }
    });
    for (Pair& pair : pairs) {
        if (pair.trick == "body-unread") {
            EXPECT_TRUE(isFailure(inTime(
                std::async(std::launch::async, [&] { return ask(pair.session, kLarge); }), pair.trick)));
        }
        if (pair.trick == "endless-chunk-extension")
            continue;  // is read, and forgotten, as long as there is time
        EXPECT_LT(pair.device.bytesSent() - sent[pair.trick],
                  (pair.device.connections() - connections[pair.trick]) * kInSockets)
            << pair.trick;
    }
}

void Hostile::armOne(Pair& pair) {
    const auto& device = pair.device;
    const uint64_t sent = device.bytesSent();
    const uint64_t connections = device.connections();
    if (const uint32_t result = pair.session.arm(); result != VELTA_OK) {
        EXPECT_EQ(result, VELTA_E_OFFLINE) << pair.trick;  // the trick has also spoilt an online check by now
        return;
    }
    EXPECT_TRUE(velta_test::waitUntil([&] { return device.connections() > connections; })) << pair.trick;
    if (pair.trick.starts_with("endless-")) {
        EXPECT_TRUE(velta_test::waitUntil([&] {
            return std::ranges::any_of(device.requests(), [](const std::string& request) {
                return request.find("alertStream") != std::string::npos;
            });
        })) << pair.trick;
        velta_test::waitUntil(
            [&] { return device.openConnections() == 0 || device.bytesSent() - sent > kInSockets; });
        EXPECT_EQ(device.bytesSent() - sent > kInSockets, kStreams.count(pair.trick) == 1) << pair.trick;
    }
    pair.session.cancel();
}

void Hostile::armHostile() {
    std::map<std::string, std::future<void>> calls;
    for (Pair& pair : pairs)
        calls[pair.trick] = std::async(std::launch::async, [&] { armOne(pair); });
    for (auto& [name, call] : calls)
        inTime(std::move(call), name);
}

void Hostile::checkCredentials() {
    for (Pair& pair : pairs) {
        for (const std::string& request : pair.device.requests()) {
            const bool mayBeInClear =
                pair.trick == "log-in-basic-only" && request.find("alertStream") == std::string::npos;
            if (!mayBeInClear) {
                EXPECT_THAT(request, Not(HasSubstr("Authorization: Basic"))) << pair.trick;
            }
            if (!pair.trick.starts_with("log-in") || pair.trick.starts_with("log-in-unknown")) {
                EXPECT_THAT(request, Not(HasSubstr("Authorization"))) << pair.trick;
            }
        }
        for (const std::string& request : pair.device.requestsElsewhere()) {
            EXPECT_EQ(pair.trick, "redirect-elsewhere") << request;
            EXPECT_THAT(request, Not(HasSubstr("Authorization")));
        }
    }
}

TEST_F(Hostile, devicesDoNoHarm) {
    ASSERT_EQ(library.record->Init(), VELTA_OK);
    const long threads = stress::threadCount();
    const long descriptors = stress::descriptorCount();
    ASSERT_NO_FATAL_FAILURE(connectAll());
    const auto isGood = [](Pair& pair, const Request& request, const std::string& answer) {
        if (&request == kRequests.data()) {
            EXPECT_THAT(answer, HasSubstr(R"("subStatusCode":"ok")")) << pair.trick;
        }
    };
    askAll(isGood);
    const size_t heap = heapInUse();
    const long before = stress::residentKiB();
    forgetPeak();

    askHostile();
    armHostile();
    checkCredentials();
    if (kMemoryIsOurs) {
        EXPECT_LT(stress::statusKiB("VmHWM:") - before, kLargestPeakKiB);
    }
    setTricks(false);
    askAll(isGood);
    EXPECT_LT(heapInUse(), heap + kLargestRest);

    pairs.clear();
    EXPECT_TRUE(velta_test::waitUntil([&] { return stress::threadCount() <= threads; }))
        << stress::threadCount();
    EXPECT_TRUE(velta_test::waitUntil([&] { return stress::descriptorCount() <= descriptors; }))
        << stress::descriptorCount();
    EXPECT_EQ(library.record->Uninit(), VELTA_OK);
}

}  // namespace
