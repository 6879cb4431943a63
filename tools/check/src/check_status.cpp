// What the online check, every 15 s, makes of a device, and how the host learns of it.
#include <algorithm>
#include <deque>

#include "check.h"
#include "library.h"

namespace check {
namespace {

constexpr const char* kUserCheck = "/VELTA/Security/userCheck";

size_t requestsOf(const veltasim::Device& device, std::string_view method, std::string_view path) {
    const auto requests = device.requests();
    return static_cast<size_t>(std::count_if(requests.begin(), requests.end(), [&](const auto& request) {
        return request.method == method && request.path() == path && request.status == 200;
    }));
}

void mustHaveReported(Trial& trial, Session& session, int status, const std::string& info) {
    trial.must(
        trial.becomes("the status callback is called", [&] { return !session.inbox().statuses().empty(); }));
    const StatusReport report = session.inbox().statuses().back();
    trial.number("status in the callback", status, report.status);
    trial.text("text in the callback", info, report.info);
    trial.holds("the callback gets the handle of the instance", report.instance == session.instance());
}

void online(Trial& trial) {
    Scene scene(trial);
    scene.session.mustReach(VELTA_STATUS_ONLINE);
    mustHaveReported(trial, scene.session, 0, "");
    trial.holds("the device was asked for " + std::string(kUserCheck),
                requestsOf(scene.device, "GET", kUserCheck) > 0);
}

void refused(Trial& trial) {
    veltasim::Device device;
    device.start();
    const Plugin plugin(trial);
    Session session(trial, plugin);
    session.mustConnect({.port = device.port(), .password = "wrong"});
    mustHaveReported(trial, session, 11, "OfflineHint=4");
    session.mustReach(VELTA_STATUS_REFUSED);
}

void locked(Trial& trial) {
    veltasim::Device device;
    device.start();
    device.lockUser(std::chrono::minutes(5));
    const Plugin plugin(trial);
    Session session(trial, plugin);
    session.mustConnect({device.port()});
    mustHaveReported(trial, session, 12, "OfflineHint=5");
    session.mustReach(VELTA_STATUS_LOCKED);
}

// What a device may put into the answer that refuses the credentials.
struct Refusal {
    const char* body;
    int status;
};
constexpr Refusal kRefusals[] = {
    {"<userCheck><lockStatus>lock</lockStatus></userCheck>", 12},
    {"<userCheck><lockStatus>unlock</lockStatus></userCheck>", 11},
    {"<userCheck><lockStatus>LOCK</lockStatus></userCheck>", 11},
    {"<userCheck><statusValue>401</statusValue></userCheck>", 11},
    {"<other><lockStatus>lock</lockStatus></other>", -1},
    {"no XML", -1},
    {"", -1},
};

void refusalDocuments(Trial& trial) {
    std::deque<veltasim::Device> devices;
    const Plugin plugin(trial);
    std::deque<Session> sessions;
    for (const Refusal& refusal : kRefusals) {
        veltasim::Device& device =
            devices.emplace_back(veltasim::Options{.auth = veltasim::AuthScheme::None});
        device.setAnswer("GET", kUserCheck, 401, refusal.body);
        device.start();
        sessions.emplace_back(trial, plugin).mustConnect({device.port()});
    }
    // The last session of all is checked after the others, as its key is the greatest.
    veltasim::Device last;
    last.start();
    Session lastSession(trial, plugin);
    lastSession.mustConnect({.port = last.port(), .index = "z"});
    lastSession.mustReach(VELTA_STATUS_ONLINE);
    for (size_t i = 0; i < std::size(kRefusals); ++i) {
        const std::string what = "401 with " + shown(kRefusals[i].body);
        trial.number("status after " + what, kRefusals[i].status, sessions[i].status());
        trial.number("callbacks after " + what, kRefusals[i].status == -1 ? 0 : 1,
                     sessions[i].inbox().statuses().size());
    }
}

void lost(Trial& trial) {
    Scene scene(trial);
    scene.session.mustReach(VELTA_STATUS_ONLINE);
    scene.device.powerOff();
    scene.session.mustReach(VELTA_STATUS_UNKNOWN);
    mustHaveReported(trial, scene.session, -1, "");
    trial.number("status callbacks", 2, scene.session.inbox().statuses().size());
}

void reportedOnce(Trial& trial) {
    Scene scene(trial);
    trial.must(trial.becomes("a second check comes",
                             [&] { return requestsOf(scene.device, "GET", kUserCheck) >= 2; }));
    // It waits for the check that is going on.
    trial.code("DisConnect", VELTA_OK, scene.session.connection().DisConnect(scene.session.instance()));
    trial.number("status callbacks after two checks and DisConnect", 1,
                 scene.session.inbox().statuses().size());
    trial.number("status", VELTA_STATUS_DISCONNECTED, scene.session.status());
}

void clearedCallback(Trial& trial) {
    Scene scene(trial);
    trial.code("SetConnStatusCallBack(null)", VELTA_OK,
               scene.session.connection().SetConnStatusCallBack(scene.session.instance(), nullptr, nullptr));
    scene.session.mustReach(VELTA_STATUS_ONLINE);
    trial.number("status callbacks", 0, scene.session.inbox().statuses().size());
}

void deviceName(Trial& trial) {
    veltasim::Device device;
    veltasim::Device unnamed;
    device.start();
    unnamed.start();
    const Plugin plugin(trial);
    const Session session(trial, plugin);
    const Session other(trial, plugin);
    session.mustConnect({.port = device.port(), .more = "DeviceName=North Gate;"});
    other.mustConnect({.port = unnamed.port(), .index = "z"});
    session.mustReach(VELTA_STATUS_ONLINE);
    other.mustReach(VELTA_STATUS_ONLINE);
    trial.text("name of the device", "North Gate", device.deviceName());
    trial.number("writes of the device information", 1,
                 requestsOf(device, "PUT", "/VELTA/System/deviceInfo"));
    trial.number("writes at a device whose URL has no name", 0,
                 requestsOf(unnamed, "PUT", "/VELTA/System/deviceInfo"));
    std::string before = session.request("GET", "/VELTA/System/deviceInfo?devIndex=1");
    for (const auto& request : device.requests()) {
        if (request.method == "PUT" && !request.body.empty())
            trial.text("the document that was written, its name replaced", before, request.body);
    }
}

void sameIndex(Trial& trial) {
    veltasim::Device early;
    veltasim::Device late;
    early.start();
    late.start();
    const Plugin plugin(trial);
    const Session earlySession(trial, plugin);
    const Session lateSession(trial, plugin);
    earlySession.mustConnect({.port = early.port(), .index = "7"});
    lateSession.mustConnect({.port = late.port(), .index = "7"});
    lateSession.mustReach(VELTA_STATUS_ONLINE);
    trial.number("status of the earlier session", VELTA_STATUS_UNKNOWN, earlySession.status());
    trial.number("requests at the device of the earlier session", 0, early.requests().size());
}

void unregistered(Trial& trial) {
    veltasim::Device device;
    veltasim::Device checked;
    device.start();
    checked.start();
    const Plugin plugin(trial);
    const Session left(trial, plugin);
    const Session refusedSession(trial, plugin);
    const Session other(trial, plugin);
    left.mustConnect({device.port()});
    trial.code("DisConnect", VELTA_OK, left.connection().DisConnect(left.instance()));
    trial.code("Connect_V2 without a password", 0x60000001,
               refusedSession.connect({.port = device.port(), .password = ""}));
    other.mustConnect({.port = checked.port(), .index = "z"});
    other.mustReach(VELTA_STATUS_ONLINE);
    trial.number("requests at the device that nobody is connected to", 0, device.requests().size());
}

constexpr Check kChecks[] = {
    {"status", "online", "the online check logs in, and reports 0 with an empty text", online, Pace::Waits},
    {"status", "refused", "refused credentials are reported as 11 with \"OfflineHint=4\"", refused,
     Pace::Waits},
    {"status", "locked", "a locked user is reported as 12 with \"OfflineHint=5\"", locked, Pace::Waits},
    {"status", "refusal-documents", "only the text \"lock\" means locked; another document means -1",
     refusalDocuments, Pace::Waits},
    {"status", "lost", "a device that is gone is reported as -1 with an empty text", lost, Pace::Waits},
    {"status", "reported-once", "only changes are reported, and DisConnect never", reportedOnce, Pace::Waits},
    {"status", "cleared-callback", "a cleared status callback is not called", clearedCallback, Pace::Waits},
    {"status", "device-name", "\"DeviceName\" is written into the device once, and nothing else with it",
     deviceName, Pace::Waits},
    {"status", "same-index", "a later session with the same \"DevIndex\" takes the place of the earlier one",
     sameIndex, Pace::Waits},
    {"status", "unregistered", "sessions that left, or were refused, are not checked", unregistered,
     Pace::Waits},
};

}  // namespace

std::span<const Check> statusChecks() {
    return kChecks;
}

}  // namespace check
