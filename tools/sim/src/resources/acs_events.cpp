#include <algorithm>

#include "json_values.h"
#include "resources/access.h"
#include "resources/search_page.h"

namespace veltasim {
namespace {

// What a search asks for; empty: anything.
struct Wanted {
    unsigned major = 0;
    unsigned minor = 0;
    std::optional<std::chrono::sys_seconds> begin;
    std::optional<std::chrono::sys_seconds> end;
    std::string cardNo;
    std::string name;
    std::string employeeNo;

    bool fits(const LoggedEvent& logged) const {
        const AccessEvent& event = logged.event;
        return (major == 0 || event.major == static_cast<int>(major)) &&
               (minor == 0 || event.minor == static_cast<int>(minor)) &&
               (!begin || *begin <= logged.instant) && (!end || logged.instant <= *end) &&
               (cardNo.empty() || event.cardNo == cardNo) && (name.empty() || event.name == name) &&
               (employeeNo.empty() || event.employeeNo == employeeNo);
    }
};

std::optional<std::chrono::sys_seconds> instantIn(const Json::Value& condition, const char* name,
                                                  const Clock& clock) {
    const std::string text = textOr(condition, name);
    if (text.empty()) return std::nullopt;
    const auto instant = clock.instantOf(text);
    if (!instant) throw Refused(kTimeFormatError);
    return instant;
}

Json::Value toJson(const LoggedEvent& logged) {
    const AccessEvent& event = logged.event;
    Json::Value json;
    json["major"] = event.major;
    json["minor"] = event.minor;
    json["time"] = event.dateTime;
    json["name"] = event.name;
    json["cardNo"] = event.cardNo;
    json["cardReaderNo"] = event.cardReaderNo;
    json["doorNo"] = event.doorNo;
    json["employeeNoString"] = event.employeeNo;
    json["serialNo"] = Json::UInt64(logged.serialNo);
    json["verifyMode"] = event.verifyMode;
    return json;
}

}  // namespace

Reply postEventSearch(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    const Json::Value& condition = objectIn(body, "AcsEventCond");
    const Clock& clock = call.state.clock;
    const Wanted wanted{numberOr0(condition, "major"),
                        numberOr0(condition, "minor"),
                        instantIn(condition, "startTime", clock),
                        instantIn(condition, "endTime", clock),
                        textOr(condition, "cardNo"),
                        textOr(condition, "name"),
                        textOr(condition, "employeeNoString")};
    std::vector<const LoggedEvent*> matches;
    for (const LoggedEvent& logged : call.state.access.log.events()) {
        if (wanted.fits(logged)) matches.push_back(&logged);
    }
    const bool withPictures = isTrue(condition, "picEnable");
    const std::string pictures = std::string("http://").append(call.request.header("Host")) +
                                 "/VELTA/AccessControl/AcsEvent/Pictures/";
    return pageReply("AcsEvent", condition, matches, "InfoList", [&](const LoggedEvent& logged) {
        Json::Value json = toJson(logged);
        if (withPictures && !logged.picture.empty())
            json["pictureURL"] = pictures + std::to_string(logged.serialNo);
        return json;
    });
}

Reply getEventPicture(const Call& call) {
    const auto& events = call.state.access.log.events();
    const auto found = std::find_if(events.begin(), events.end(), [&](const LoggedEvent& logged) {
        return !logged.picture.empty() && std::to_string(logged.serialNo) == call.variables.front();
    });
    return found == events.end() ? notFound(call) : Reply{200, "image/jpeg", std::string(found->picture)};
}

}  // namespace veltasim
