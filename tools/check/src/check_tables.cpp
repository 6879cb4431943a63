// The tables of functions, each function reached by its place in the table.
#include "check.h"
#include "library.h"

namespace check {
namespace {

constexpr const char* kConnect = "Device.IConnect_V2";
constexpr const char* kEvent = "Device.IEvent";
constexpr const char* kGateway = "Device.IVELTA";
constexpr const char* kStream = "Device.IMediaStream";

constexpr uint32_t kNoInterface = 0x82000005;
constexpr uint32_t kNotSupported = 0x40000001;

// What a function answers on an instance, where it is the same whatever it is given.
enum class Answer { Depends, NotSupported, Nothing };

struct Place {
    const char* key;
    size_t index;
    const char* name;
    Answer answer;
};
constexpr Place kPlaces[] = {
    {kConnect, 0, "SetConnStatusCallBack", Answer::Depends},
    {kConnect, 1, "Connect", Answer::NotSupported},
    {kConnect, 2, "DisConnect", Answer::Depends},
    {kConnect, 3, "GetConnectStatus", Answer::Depends},
    {kConnect, 4, "SetDevRegisterCallBack", Answer::NotSupported},
    {kConnect, 5, "SetLoginResultCallBack", Answer::NotSupported},
    {kConnect, 6, "Connect_V2", Answer::Depends},
    {kConnect, 7, "SetConnectParams", Answer::NotSupported},
    {kEvent, 0, "SetEventCallBack", Answer::Depends},
    {kEvent, 1, "GetArmingSchedule", Answer::NotSupported},
    {kEvent, 2, "SetArmingSchedule", Answer::NotSupported},
    {kGateway, 0, "VELTA_Getway", Answer::Depends},
    {kGateway, 1, "DeviceLoop", Answer::Depends},
    {kGateway, 2, "ActiveDevice", Answer::NotSupported},
    {kStream, 0, "StartStream", Answer::NotSupported},
    {kStream, 1, "StopStream", Answer::NotSupported},
    {kStream, 2, "ForceIFrame", Answer::NotSupported},
    {kStream, 3, "StartPlayBack", Answer::NotSupported},
    {kStream, 4, "StartRPlayBack", Answer::NotSupported},
    {kStream, 5, "StopPlayBack", Answer::NotSupported},
    {kStream, 6, "Pause", Answer::NotSupported},
    {kStream, 7, "Resume", Answer::NotSupported},
    {kStream, 8, "SetScale", Answer::NotSupported},
    {kStream, 9, "SeekByRelTime", Answer::NotSupported},
    {kStream, 10, "SeekByAbsTime", Answer::NotSupported},
    {kStream, 11, "StartTalk", Answer::Nothing},
    {kStream, 12, "StopTalk", Answer::Nothing},
    {kStream, 13, "SendTalkData", Answer::Nothing},
    {kStream, 14, "StartDownloadRecord", Answer::Nothing},
    {kStream, 15, "StopDownloadRecord", Answer::Nothing},
};

// Every function of the tables takes its arguments in registers and ignores those that it does not have, so one type
// serves for all: the instance, and memory that may be read and written.
using AnyFunction = int (*)(void*, void*, void*, void*, void*, void*);

int call(Trial& trial, const Plugin& plugin, const Session& session, const Place& place, void* instance) {
    void* table = nullptr;
    plugin.record().QueryInterface(session.instance(), place.key, &table);
    trial.must(trial.holds(std::string("\"") + place.key + "\" has a table", table != nullptr));
    void* const function = static_cast<void**>(table)[place.index];
    trial.must(trial.holds(std::string(place.name) + " is a function", function != nullptr));
    alignas(16) static char scratch[5][4096];
    return reinterpret_cast<AnyFunction>(function)(instance, scratch[0], scratch[1], scratch[2], scratch[3],
                                                   scratch[4]);
}

void nullHandles(Trial& trial) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    for (const Place& place : kPlaces)
        trial.code(std::string(place.name) + " of a null instance", kNoInterface,
                   call(trial, plugin, session, place, nullptr));
}

void expectAnswers(Trial& trial, Answer answer, uint32_t code) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    for (const Place& place : kPlaces) {
        if (place.answer == answer)
            trial.code(place.name, code, call(trial, plugin, session, place, session.instance()));
    }
    trial.number("status of the session after it", VELTA_STATUS_UNKNOWN, session.status());
}

void notSupported(Trial& trial) {
    expectAnswers(trial, Answer::NotSupported, kNotSupported);
}

void talkAndDownload(Trial& trial) {
    expectAnswers(trial, Answer::Nothing, VELTA_OK);
}

// Each function that is served stands in its place: the places are tried through numbers only.
void servedPlaces(Trial& trial) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    void* connect = nullptr;
    plugin.record().QueryInterface(session.instance(), kConnect, &connect);
    const auto at = [&](size_t index) { return static_cast<void**>(connect)[index]; };
    const auto connectTo = reinterpret_cast<int (*)(void*, char*, char*, char*)>(at(6));
    const auto getStatus = reinterpret_cast<int (*)(void*, int*, char*)>(at(3));
    const auto disconnect = reinterpret_cast<int (*)(void*)>(at(2));
    std::string url = "Connect=TCP/IP;Target=127.0.0.1;Port=1;DevIndex=1;";
    std::string user = "admin";
    trial.code("function 7, Connect_V2", VELTA_OK,
               connectTo(session.instance(), url.data(), user.data(), user.data()));
    int status = VELTA_STATUS_LOCKED;
    trial.code("function 4, GetConnectStatus", VELTA_OK, getStatus(session.instance(), &status, nullptr));
    trial.number("status", VELTA_STATUS_UNKNOWN, status);
    trial.code("function 3, DisConnect", VELTA_OK, disconnect(session.instance()));
    trial.code("function 4, GetConnectStatus", VELTA_OK, getStatus(session.instance(), &status, nullptr));
    trial.number("status after DisConnect", VELTA_STATUS_DISCONNECTED, status);
}

constexpr Check kChecks[] = {
    {"tables", "null-handles", "each of the 30 functions answers a null instance with 0x82000005",
     nullHandles},
    {"tables", "not-supported", "what the plug-in does not offer answers 0x40000001", notSupported},
    {"tables", "talk-and-download", "talk and record download answer 0 and do nothing", talkAndDownload},
    {"tables", "served-places", "the functions of the connection table stand in their places", servedPlaces},
};

}  // namespace

std::span<const Check> tableChecks() {
    return kChecks;
}

}  // namespace check
