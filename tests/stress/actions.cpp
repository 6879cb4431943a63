#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

#include "ledger.h"
#include "process.h"
#include "round.h"

namespace stress {
namespace {

void setStatusCallBack(Round& round, Slot& slot, Random& random) {
    const std::lock_guard one(slot.setsStatus);
    Token& token = round.newToken(slot);
    const bool clears = oneIn(random, 4);
    note("SetConnStatusCallBack",
         slot.connect->SetConnStatusCallBack(slot.instance, clears ? nullptr : Round::onStatus, &token));
    const std::lock_guard guard(slot.tokens);
    for (Token* before : slot.statuses)
        before->over = true;
    slot.statuses.assign({&token});
}

void connect(Round& round, Slot& slot, Random& random) {
    const uint16_t port =
        oneIn(random, 20) ? 9 : round.site.devices[below(random, round.site.devices.size())]->port();
    std::string url = "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(port) +
                      ";DevIndex=" + std::to_string(oneIn(random, 8) ? below(random, 20) : slot.number) + ";";
    if (oneIn(random, 4)) url += "DeviceName=Gate " + std::to_string(below(random, 100)) + ";";
    std::string user = "admin";
    std::string password = oneIn(random, 40) ? "wrong" : "velta-sim-1";
    note("Connect_V2", slot.connect->Connect_V2(slot.instance, url.data(), user.data(), password.data()));
}

void disconnect(Round&, Slot& slot, Random& random) {
    if (!slot.restless && !oneIn(random, 200)) return;
    note("DisConnect", slot.connect->DisConnect(slot.instance));
}

void arm(Round& round, Slot& slot, Random&) {
    Token& token = round.newToken(slot);
    if (note("SetEventCallBack", slot.event->SetEventCallBack(slot.instance, Round::onEvent, &token)) !=
        VELTA_OK)
        return;
    const std::lock_guard guard(slot.tokens);
    slot.events.push_back(&token);
}

/* Only what was armed before the cancel began is sure to be over when it returns. */
void cancel(Round&, Slot& slot, Random&) {
    std::vector<Token*> armed;
    {
        const std::lock_guard guard(slot.tokens);
        armed.swap(slot.events);
    }
    const bool done = note("SetEventCallBack, null",
                           slot.event->SetEventCallBack(slot.instance, nullptr, nullptr)) == VELTA_OK;
    for (Token* token : armed)
        token->over = token->over || done;
    const std::lock_guard guard(slot.tokens);
    if (!done) slot.events.insert(slot.events.end(), armed.begin(), armed.end());
}

std::string envelope(const char* method, const std::string& uri, const std::string& body) {
    std::string quoted;
    for (const char c : body)
        quoted += c == '"' ? "\\\"" : std::string(1, c);
    return std::string(R"({"method":")") + method + R"(","uri":")" + uri + R"(","body":")" + quoted + "\"}";
}

std::string anyRequest(Random& random) {
    struct Row {
        const char* method;
        const char* uri;
        const char* body;
    };
    constexpr Row kRows[] = {
        {"GET", "/VELTA/System/deviceInfo?devIndex=1", ""},
        {"PUT", "/VELTA/System/deviceInfo?devIndex=1", "<DeviceInfo><deviceName>x</deviceName></DeviceInfo>"},
        {"GET", "/VELTA/Nothing?devIndex=1", ""},
        {"GET", "/VELTA/System/deviceInfo?format=json", ""},
        {"PUT", "/VELTA/System/deviceInfo?format=json", R"({"DeviceInfo":{"deviceName":"Gate"}})"},
        {"GET", "/VELTA/System/time?format=json", ""},
        {"PUT", "/VELTA/System/time/timeZone?format=json", R"({"timeZone":"CST-8:00:00"})"},
        {"GET", "/VELTA/System/Network/interfaces?format=json", ""},
        {"GET", "/VELTA/AccessControl/capabilities?format=json", ""},
        {"POST", "/VELTA/AccessControl/UserInfo/Search?format=json",
         R"({"UserInfoSearchCond":{"searchID":"1","searchResultPosition":0,"maxResults":30}})"},
        {"POST", "/VELTA/AccessControl/UserInfo/Record?format=json",
         R"({"UserInfo":[{"employeeNo":"1","Valid":{"beginTime":"2026","endTime":"2036"}},)"
         R"({"employeeNo":"2","Valid":{"beginTime":"2026","endTime":"2036"}}]})"},
        {"POST", "/VELTA/AccessControl/CardInfo/Record?format=json",
         R"({"CardInfo":{"employeeNo":"1","cardNo":"7","cardType":"normalCard"}})"},
        {"PUT", "/VELTA/AccessControl/RemoteControl/door/1?format=json",
         R"({"RemoteControlDoor":{"cmd":"open"}})"},
        {"PUT", "/VELTA/System/IO/outputs/1/trigger?devIndex=1", R"({"IOPortData":{"outputState":"high"}})"},
        {"PATCH", "/VELTA/System/deviceInfo?devIndex=1", ""},
        {"GET", "no query", ""},
    };
    if (oneIn(random, 2000)) return envelope("PUT", "/VELTA/System/reboot?format=json", "");
    if (oneIn(random, 20)) return "{\"method\":";
    const Row& row = kRows[below(random, std::size(kRows))];
    return envelope(row.method, row.uri, row.body);
}

void ask(Round&, Slot& slot, Random& random) {
    std::string request = anyRequest(random);
    constexpr size_t kSizes[] = {0, 1, 20, 4096, 1 << 20};
    const size_t room = kSizes[below(random, 5)];
    std::string answer(room + 1, '#');
    note("VELTA_Getway",
         slot.gateway->VELTA_Getway(slot.instance, oneIn(random, 50) ? nullptr : request.data(),
                                    answer.data(), static_cast<unsigned>(room), nullptr));
    const size_t length = answer.find('\0');
    if (answer.back() != '#' || (room > 0 && length >= room)) violation("an answer beyond its room");
    if (room > 1 && length == 0) violation("no answer to " + request);
}

void loop(Round&, Slot& slot, Random&) {
    std::string buffer(8192, '#');
    note("DeviceLoop",
         slot.gateway->DeviceLoop(slot.instance, buffer.data(), static_cast<unsigned>(buffer.size() - 1)));
    if (buffer.back() != '#') violation("an inventory beyond its room");
}

void look(Round&, Slot& slot, Random&) {
    int status = -99;
    note("GetConnectStatus", slot.connect->GetConnectStatus(slot.instance, &status, nullptr));
    const int known[] = {VELTA_STATUS_UNKNOWN, VELTA_STATUS_ONLINE, VELTA_STATUS_DISCONNECTED,
                         VELTA_STATUS_REFUSED, VELTA_STATUS_LOCKED};
    if (std::ranges::find(known, status) == std::end(known)) violation("status " + std::to_string(status));
}

void configure(Round& round, Slot&, Random& random) {
    const VELTA_SetConfigFunction set = round.library->setConfig;
    if (oneIn(random, 10)) note("Plugin_SetConfig", set("SetMarlListen", "0"));
    note("Plugin_SetConfig", set("SetEventSub", "1"));
    note("Plugin_SetConfig",
         set("NetZoneTableNotify",
             R"({"accessNetInfos":[{"protocolType":"VELTA","accessIp":"10.1.2.3","id":2}]})"));
}

using Action = void(Round&, Slot&, Random&);

constexpr Chance<Action> kAll[] = {
    {20, arm}, {8, cancel}, {2, connect},   {1, disconnect},        {40, ask},
    {3, loop}, {10, look},  {4, configure}, {5, setStatusCallBack},
};
constexpr Chance<Action> kInEvent[] = {
    {5, arm}, {2, cancel}, {2, connect}, {1, disconnect}, {5, ask}, {1, loop}, {4, configure},
};
constexpr Chance<Action> kInStatus[] = {{2, arm}, {2, ask}, {4, look}, {2, configure}};

}  // namespace

void act(Round& round, Slot& slot, Random& random) {
    choose(kAll, random)(round, slot, random);
}
void actInEvent(Round& round, Slot& slot, Random& random) {
    choose(kInEvent, random)(round, slot, random);
}
void actInStatus(Round& round, Slot& slot, Random& random) {
    choose(kInStatus, random)(round, slot, random);
}

void destroyUnderRequest(Round& round, Slot& slot) {
    static std::atomic<uint64_t> number{0};
    const std::string target = kMarkedPath + std::to_string(++number);
    std::atomic<bool> returned{false};
    std::thread request([&, instance = slot.instance] {
        std::string text = envelope("GET", target + "?devIndex=1", "");
        char answer[1000];
        note("VELTA_Getway",
             slot.gateway->VELTA_Getway(instance, text.data(), answer, sizeof answer, nullptr));
        returned = true;
    });
    waitUntil([&] { return returned || round.site.arrived(target); });
    round.destroy(slot, "DestroyInstance, under a request");
    request.join();
}

}  // namespace stress
