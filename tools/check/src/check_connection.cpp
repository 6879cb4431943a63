// The connection URL, what is stored of it, and the statuses that need no device.
#include <cstring>

#include "check.h"
#include "library.h"

namespace check {
namespace {

constexpr uint32_t kBadParameter = 0x60000001;
constexpr uint32_t kNullParameter = 0x4000000A;
constexpr const char* kAnyResource = "/VELTA/Any?devIndex=1";

const std::string kGood = "Connect=TCP/IP;Target=127.0.0.1;Port=8000;DevIndex=1;";

void acceptedUrls(Trial& trial) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    for (const std::string& url :
         {kGood, kGood + "ResType=3;DeviceName=Gate;",
          std::string("DevIndex=;Port=8000;Target=host.example;Connect=TCP/IP;"),
          std::string("Target=127.0.0.1;Port=8000;Connect=TCP/IP;"), kGood + "Port=7", kGood + "Connect=UDP",
          kGood + "Unknown=1;unknown;=;", "Connect=UDP;" + kGood, "Target=;Port=0;" + kGood, ";;" + kGood,
          "item;" + kGood, "=empty key;" + kGood, kGood + "DeviceName=a=b=c;"})
        trial.code("Connect_V2 " + shown(url), VELTA_OK, session.connectUrl(url));
}

void refusedUrls(Trial& trial) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    for (const std::string& url :
         {std::string(), std::string("Target=127.0.0.1;Port=8000;DevIndex=1;"), "connect" + kGood.substr(7),
          "Connect=tcp/ip;" + kGood.substr(15), "Connect=TCP/IP ;" + kGood.substr(15), " " + kGood,
          kGood + "Connect=UDP;", std::string("Connect=TCP/IP;Port=8000;DevIndex=1;"), kGood + "Target=;",
          std::string("Connect=TCP/IP;Target=127.0.0.1;DevIndex=1;"), kGood + "Port=;", kGood + "Port=0;",
          kGood + "Port=abc;", std::string("Connect=TCP/IP;Target=127.0.0.1;DevIndex=1;Port=8000"),
          std::string("Connect=TCP/IP;Target=127.0.0.1;DevIndex=1; Port=8000;")})
        trial.code("Connect_V2 " + shown(url), kBadParameter, session.connectUrl(url));
    trial.code("Connect_V2 without a user", kBadParameter, session.connectUrl(kGood, ""));
    trial.code("Connect_V2 without a password", kBadParameter, session.connectUrl(kGood, "admin", ""));
    trial.number("status after all of them", VELTA_STATUS_UNKNOWN, session.status());
}

void limits(Trial& trial) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    const std::string half(127, 'x');
    trial.code("Connect_V2 with credentials of 254 bytes", VELTA_OK, session.connectUrl(kGood, half, half));
    trial.code("Connect_V2 with credentials of 255 bytes", kBadParameter,
               session.connectUrl(kGood, half + "x", half));
    for (const char* port : {"1", "65535"})
        trial.code("Connect_V2 with port " + std::string(port), VELTA_OK,
                   session.connectUrl(kGood + "Port=" + port + ";"));
    for (const char* port : {"65536", "-1", "99999999999"})
        trial.code("Connect_V2 with port " + std::string(port), kBadParameter,
                   session.connectUrl(kGood + "Port=" + port + ";"));
    trial.code("Connect_V2 with a line feed in the target", kBadParameter,
               session.connectUrl(kGood + "Target=127.0.0.1\n;"));
    trial.code("Connect_V2 with a tabulator in the name", kBadParameter,
               session.connectUrl(kGood + "DeviceName=North\tGate;"));
}

void nulls(Trial& trial) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    std::string url = kGood;
    std::string word = "admin";
    const auto connect = session.connection().Connect_V2;
    trial.code("Connect_V2 with a null URL", kNullParameter,
               connect(session.instance(), nullptr, word.data(), word.data()));
    trial.code("Connect_V2 with a null user", kNullParameter,
               connect(session.instance(), url.data(), nullptr, word.data()));
    trial.code("Connect_V2 with a null password", kNullParameter,
               connect(session.instance(), url.data(), word.data(), nullptr));
    trial.code("GetConnectStatus without a place", kNullParameter,
               session.connection().GetConnectStatus(session.instance(), nullptr, nullptr));
}

// Whether a request of the session comes to that device.
bool reaches(const Session& session, veltasim::Device& device) {
    device.forgetRequests();
    session.request("GET", kAnyResource);
    return !device.requests().empty();
}

void valuesTaken(Trial& trial) {
    veltasim::Device device;
    device.start();
    const std::string port = std::to_string(device.port());
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    const std::string start = "Connect=TCP/IP;Target=127.0.0.1;DevIndex=1;";
    for (const std::string& items :
         {"Port=" + port + ";", "Port=1;Port=" + port + ";", "Port=" + port + "abc;",
          "Port=" + port + ";Port=1", "Target=nowhere.invalid;Target=127.0.0.1;Port=" + port + ";",
          "port=1;Port=" + port + ";"}) {
        trial.code("Connect_V2 with " + items, VELTA_OK, session.connectUrl(start + items));
        trial.holds("with " + items + " requests go to the device", reaches(session, device));
    }
}

void secondConnect(Trial& trial) {
    veltasim::Device first;
    veltasim::Device second;
    first.start();
    second.start();
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    session.mustConnect({first.port()});
    trial.holds("requests go to the first device", reaches(session, first));
    session.mustConnect({second.port()});
    trial.holds("after a second Connect_V2 requests go to the second device", reaches(session, second));
    trial.code("Connect_V2 with a wrong \"Connect\"", kBadParameter,
               session.connectUrl("Connect=UDP;Target=127.0.0.1;Port=" + std::to_string(first.port()) + ";"));
    trial.holds("it stores nothing: requests go to the second device", reaches(session, second));
    trial.code("Connect_V2 without a password", kBadParameter,
               session.connect({.port = first.port(), .password = ""}));
    trial.holds("it stores its values: requests go to the first device", reaches(session, first));
}

void noContact(Trial& trial) {
    veltasim::Device device;
    device.start();
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    session.mustConnect({device.port()});
    trial.number("requests at the device", 0, device.requests().size());
    trial.number("status", VELTA_STATUS_UNKNOWN, session.status());
}

void ownCopies(Trial& trial) {
    veltasim::Device device;
    device.start();
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    std::string url =
        "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(device.port()) + ";DevIndex=1;";
    std::string user = "admin";
    std::string password = "velta-sim-1";
    trial.code("Connect_V2", VELTA_OK,
               session.connection().Connect_V2(session.instance(), url.data(), user.data(), password.data()));
    for (std::string* text : {&url, &user, &password})
        text->assign(text->size(), '#');
    trial.contains("the device information, asked for after the texts were overwritten",
                   "<model>VA204</model>", session.request("GET", "/VELTA/System/deviceInfo?devIndex=1"));
}

void statusAtFirst(Trial& trial) {
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    trial.number("status of a new instance", VELTA_STATUS_UNKNOWN, session.status());
    char info[64];
    std::memset(info, '#', sizeof info);
    int status = VELTA_STATUS_LOCKED;
    trial.code("GetConnectStatus", VELTA_OK,
               session.connection().GetConnectStatus(session.instance(), &status, info));
    trial.number("status", VELTA_STATUS_UNKNOWN, status);
    trial.text("the info, which is not written", std::string(sizeof info, '#'),
               std::string(info, sizeof info));
}

void disconnect(Trial& trial) {
    const Plugin plugin(trial);
    Session session(trial, plugin);
    const auto disConnect = session.connection().DisConnect;
    trial.code("DisConnect of a session that never connected", VELTA_OK, disConnect(session.instance()));
    trial.number("status", VELTA_STATUS_DISCONNECTED, session.status());
    trial.code("Connect_V2", VELTA_OK, session.connectUrl(kGood));
    trial.number("status after Connect_V2", VELTA_STATUS_DISCONNECTED, session.status());
    trial.code("DisConnect", VELTA_OK, disConnect(session.instance()));
    trial.code("second DisConnect", VELTA_OK, disConnect(session.instance()));
    trial.number("status", VELTA_STATUS_DISCONNECTED, session.status());
    trial.number("status callbacks", 0, session.inbox().statuses().size());
}

constexpr Check kChecks[] = {
    {"connection", "accepted-urls", "items in any order, unknown ones, and text after the last \";\" pass",
     acceptedUrls},
    {"connection", "refused-urls", "a wrong \"Connect\", and empty or missing values, give 0x60000001",
     refusedUrls},
    {"connection", "limits", "ports are 1 to 65535, credentials 254 bytes, no value holds control characters",
     limits},
    {"connection", "nulls", "null arguments give 0x4000000A", nulls},
    {"connection", "values-taken", "the last of repeated items counts, and the leading digits of a port",
     valuesTaken},
    {"connection", "second-connect", "a second Connect_V2 replaces the parameters; a wrong \"Connect\" none",
     secondConnect},
    {"connection", "no-contact", "Connect_V2 does not talk to the device, and leaves the status as it is",
     noContact},
    {"connection", "own-copies", "the plug-in keeps no pointer into the texts of the host", ownCopies},
    {"connection", "status-at-first", "a new session's status is -1; the info text is not written",
     statusAtFirst},
    {"connection", "disconnect", "DisConnect gives 0 and the status 1, without a callback", disconnect},
};

}  // namespace

std::span<const Check> connectionChecks() {
    return kChecks;
}

}  // namespace check
