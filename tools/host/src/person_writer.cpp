#include "person_writer.h"

#include <json/json.h>

#include <algorithm>
#include <functional>
#include <stdexcept>

#include "access_searches.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kRecord = "/VELTA/AccessControl/UserInfo/Record";
constexpr const char* kModify = "/VELTA/AccessControl/UserInfo/Modify";
constexpr const char* kCardRecord = "/VELTA/AccessControl/CardInfo/Record";
constexpr const char* kCardModify = "/VELTA/AccessControl/CardInfo/Modify";
constexpr const char* kPersonExists[] = {"employeeNoAlreadyExist", "deviceUserAlreadyExist"};
constexpr const char* kCardExists = "cardNoAlreadyExist";

bool isExisting(const Status& status) {
    return std::find(std::begin(kPersonExists), std::end(kPersonExists), status.name) !=
           std::end(kPersonExists);
}

Json::Value wrapped(const char* name, const Json::Value& value) {
    Json::Value body;
    body[name] = value;
    return body;
}

// One verdict for each of the persons. The plug-in adds a batch even while it does not yet know whether the device is
// online; a single person only afterwards.
std::vector<Verdict> addBatch(const Site& site, const Json::Value& persons) {
    const Json::Value answer = site.ask("POST", kRecord, wrapped("UserInfo", persons));
    const Json::Value& results = Json::Path(".UserInfoOutList.UserInfoOut").resolve(answer);
    if (!results.isArray() || results.size() != persons.size())
        throw Failure(ExitCode::Failed, "the answer does not tell what became of the persons");
    std::vector<Verdict> verdicts;
    for (const Json::Value& result : results) {
        const Verdict& verdict = verdicts.emplace_back(judgeAnswer(compactJson(result)));
        if (verdict.code == ExitCode::Ok || verdict.isConclusive) continue;
        // Without this look a device that has gone would be waited for once more with each person.
        if (const auto obstacle = findObstacle(site.host, site.session)) throw Failure(*obstacle);
    }
    return verdicts;
}

// A card that the person has already counts as given; nobody else's is taken away.
void giveCard(const Site& site, const Json::Value& card) {
    Status refusal;
    try {
        site.ask("POST", kCardRecord, wrapped("CardInfo", card));
        return;
    } catch (const DeviceError& error) {
        if (error.status.name != kCardExists) throw;
        refusal = error.status;
    }
    Json::Value condition;
    condition["CardNoList"] = objectsOf("cardNo", {member(card, "cardNo")});
    Search search(site, kCardSearch, condition, Pager(0, 1));
    const Json::Value page = search.next().value_or(Json::Value());
    const Json::Value& found = Json::Path("[0]").resolve(page);
    const std::string owner = member(found, "employeeNo");
    if (owner != member(card, "employeeNo")) {
        refusal.description = "card " + member(card, "cardNo") + " is employee " + owner + "'s";
        throw DeviceError(refusal);
    }
    if (member(found, "cardType") != member(card, "cardType"))
        site.ask("PUT", kCardModify, wrapped("CardInfo", card));
}

void giveCards(const Site& site, const PersonRow& row) {
    for (const Json::Value& card : cardsJson(row))
        giveCard(site, card);
}

// Turns what is wrong with one person into its outcome.
void attempt(Written& written, Written::Outcome outcome, const std::function<void()>& act) {
    const auto fail = [&](const std::string& reason) { written = {Written::Outcome::Failed, reason, {}}; };
    try {
        act();
        written.outcome = outcome;
    } catch (const DeviceError& error) {
        fail(error.what());
        written.status = error.status;
    } catch (const std::invalid_argument& error) {
        fail(error.what());
    }
}

}  // namespace

std::vector<Written> writePersons(const Site& site, const std::vector<PersonRow>& rows) {
    std::vector<Written> all(rows.size());
    std::vector<size_t> sent;  // places in rows
    Json::Value persons = Json::arrayValue;
    for (size_t i = 0; i < rows.size(); ++i) {
        attempt(all[i], Written::Outcome::Added, [&] {
            cardsJson(rows[i]);
            persons.append(personJson(rows[i], Extent::Complete));
            sent.push_back(i);
        });
    }
    if (sent.empty()) return all;
    const std::vector<Verdict> verdicts = addBatch(site, persons);
    for (size_t place = 0; place < sent.size(); ++place) {
        const Verdict& verdict = verdicts[place];
        const PersonRow& row = rows[sent[place]];
        Written& written = all[sent[place]];
        if (verdict.code == ExitCode::Ok)
            attempt(written, Written::Outcome::Added, [&] { giveCards(site, row); });
        else if (isExisting(verdict.status))
            attempt(written, Written::Outcome::Modified, [&] { modifyPerson(site, row); });
        else
            written = {Written::Outcome::Failed, verdict.reason, verdict.status};
    }
    return all;
}

void addPerson(const Site& site, const PersonRow& row) {
    Json::Value persons = Json::arrayValue;
    persons.append(personJson(row, Extent::Complete));
    const std::vector<Json::Value> cards = cardsJson(row);
    const Verdict verdict = addBatch(site, persons).front();
    if (verdict.code != ExitCode::Ok) {
        DeviceError error(verdict.status);
        if (isExisting(verdict.status)) error.hint = "velta-host persons modify changes a person";
        throw error;
    }
    giveCards(site, row);
}

void modifyPerson(const Site& site, const PersonRow& row) {
    const Json::Value person = personJson(row, Extent::Changes);
    const std::vector<Json::Value> cards = cardsJson(row);
    if (person.size() > 1) site.ask("PUT", kModify, wrapped("UserInfo", person));
    giveCards(site, row);
}

}  // namespace host
