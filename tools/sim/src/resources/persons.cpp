#include "json_values.h"
#include "resources/access.h"
#include "resources/search_page.h"

namespace veltasim {

Reply postPerson(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    call.state.access.people.addPerson(objectIn(body, "UserInfo"), call.state.clock);
    return done(call);
}

Reply putPerson(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    call.state.access.people.modifyPerson(objectIn(body, "UserInfo"), call.state.clock);
    return done(call);
}

Reply postPersonSearch(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    const Json::Value& condition = objectIn(body, "UserInfoSearchCond");
    return pageReply("UserInfoSearch", condition,
                     chosen(call.state.access.people.persons(), condition, "EmployeeNoList", "employeeNo"),
                     "UserInfo", [](const Person& person) { return person.info; });
}

Reply getPersonCount(const Call& call) {
    Json::Value answer;
    answer["UserInfoCount"]["personNumber"] = Json::UInt64(call.state.access.people.persons().size());
    return jsonReply(answer);
}

// Those that exist go; the work has failed if others were listed too.
Reply putPersonDelete(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    const Json::Value& detail = objectIn(body, "UserInfoDetail");
    Access& access = call.state.access;
    const std::string mode = textIn(detail, "mode");
    bool knowsAll = true;
    if (mode == "all") {
        access.removeAllPersons();
    } else if (mode == "byEmployeeNo") {
        for (const std::string& employeeNo : textsIn(detail, "EmployeeNoList", "employeeNo"))
            knowsAll = access.removePerson(employeeNo) && knowsAll;
    } else {
        return refused(call, badParameter("mode"));
    }
    access.personDeletion.start(access.backgroundTime, knowsAll);
    return done(call);
}

Reply getPersonDeleteProcess(const Call& call) {
    Json::Value answer;
    answer["UserInfoDetailDeleteProcess"]["status"] = call.state.access.personDeletion.status();
    return jsonReply(answer);
}

}  // namespace veltasim
