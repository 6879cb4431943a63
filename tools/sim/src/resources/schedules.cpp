#include "json_values.h"
#include "resources/access.h"

namespace veltasim {
namespace {

using Kind = Schedules::Kind;

unsigned numberOf(const Call& call, Kind kind) {
    const auto index = indexIn(call, Schedules::maxOf(kind));
    if (!index) throw Refused(badParameter(Schedules::nameOf(kind)));
    return static_cast<unsigned>(*index) + 1;
}

}  // namespace

template <Kind kind>
Reply getSchedule(const Call& call) {
    Json::Value answer;
    answer[Schedules::nameOf(kind)] = call.state.access.schedules.get(kind, numberOf(call, kind));
    return jsonReply(answer);
}

template <Kind kind>
Reply putSchedule(const Call& call) {
    const unsigned number = numberOf(call, kind);
    const Json::Value body = readObject(call.request.body);
    const Json::Value& document = objectIn(body, Schedules::nameOf(kind));
    if (!memberOf(document, "enable").isBool()) return refused(call, badParameter("enable"));
    call.state.access.schedules.set(kind, number, document);
    return done(call);
}

template Reply getSchedule<Kind::WeekPlan>(const Call&);
template Reply putSchedule<Kind::WeekPlan>(const Call&);
template Reply getSchedule<Kind::HolidayPlan>(const Call&);
template Reply putSchedule<Kind::HolidayPlan>(const Call&);
template Reply getSchedule<Kind::HolidayGroup>(const Call&);
template Reply putSchedule<Kind::HolidayGroup>(const Call&);
template Reply getSchedule<Kind::PlanTemplate>(const Call&);
template Reply putSchedule<Kind::PlanTemplate>(const Call&);

Reply getFaceRecognizeMode(const Call& call) {
    Json::Value answer;
    answer["FaceRecognizeMode"]["mode"] = call.state.access.faceRecognizeMode;
    return jsonReply(answer);
}

Reply putFaceRecognizeMode(const Call& call) {
    const std::string mode = textIn(objectIn(readObject(call.request.body), "FaceRecognizeMode"), "mode");
    if (mode != "normalMode" && mode != "deepMode") return refused(call, badParameter("mode"));
    call.state.access.faceRecognizeMode = mode;
    return done(call);
}

}  // namespace veltasim
