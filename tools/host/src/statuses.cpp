#include "statuses.h"

#include <velta/connect.h>

#include "text.h"

namespace host {
namespace {

constexpr StatusMeaning kMeanings[] = {
    {VELTA_STATUS_ONLINE, ExitCode::Ok, "online", ""},
    {VELTA_STATUS_DISCONNECTED, ExitCode::Failed, "disconnected by this program", ""},
    {VELTA_STATUS_REFUSED, ExitCode::Refused, "the device refuses the credentials",
     "check user and password; each further attempt brings the user closer to being locked"},
    {VELTA_STATUS_LOCKED, ExitCode::Locked, "the device has locked the user after too many wrong passwords",
     "wait until the lock ends or have another user end it, then check the password"},
    // The last row stands for whatever is not listed.
    {VELTA_STATUS_UNKNOWN, ExitCode::Unreachable, "not reachable", "check cable, address, port and firewall"},
};

const char* hintFor(int status, const std::optional<Reachability>& probed) {
    return status == VELTA_STATUS_UNKNOWN && probed ? probed->hint.c_str() : meaningOf(status).hint;
}

}  // namespace

const StatusMeaning& meaningOf(int status) {
    for (const StatusMeaning& row : kMeanings) {
        if (row.status == status) return row;
    }
    return *(std::end(kMeanings) - 1);
}

std::string statusLine(const DeviceAddress& device, int status, const std::optional<Reachability>& probed) {
    std::string line = clockText() + "  " + device.text() + "  status " + std::to_string(status) + ": " +
                       meaningOf(status).meaning;
    const std::string hint = hintFor(status, probed);
    if (probed && status == VELTA_STATUS_UNKNOWN) line += "\n          " + probed->finding;
    if (!hint.empty()) line += "\n          " + hint;
    return line;
}

Json::Value statusJson(const DeviceAddress& device, int status, const std::optional<Reachability>& probed) {
    Json::Value json;
    json["type"] = "status";
    json["device"] = device.text();
    json["status"] = status;
    json["meaning"] = meaningOf(status).meaning;
    if (probed && status == VELTA_STATUS_UNKNOWN) json["finding"] = probed->finding;
    const std::string hint = hintFor(status, probed);
    if (!hint.empty()) json["hint"] = hint;
    return json;
}

}  // namespace host
