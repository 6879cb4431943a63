#include "access/people.h"

#include <algorithm>

#include "access/person_rules.h"
#include "json_values.h"
#include "status.h"

namespace veltasim {

std::string Person::name() const {
    return textOr(info, "name");
}

const Person& People::person(const std::string& employeeNo) const {
    const Person* person = persons_.find(employeeNo);
    if (!person) throw Refused(kEmployeeNoNotExist);
    return *person;
}

Person& People::personToChange(const std::string& employeeNo) {
    Person* person = persons_.find(employeeNo);
    if (!person) throw Refused(kEmployeeNoNotExist);
    return *person;
}

void People::addPerson(const Json::Value& info, const Clock& clock) {
    checkPerson(info, doors_, clock);
    const std::string employeeNo = info["employeeNo"].asString();
    if (persons_.find(employeeNo)) throw Refused(kEmployeeNoAlreadyExist);
    if (persons_.size() >= capacity_.persons) throw Refused(kDeviceUserFull);
    persons_.add(employeeNo, {info, {}, {}});
}

void People::modifyPerson(const Json::Value& changes, const Clock& clock) {
    Person& person = personToChange(textIn(changes, "employeeNo"));
    Json::Value changed = person.info;
    mergeInto(changed, changes);
    checkPerson(changed, doors_, clock);
    person.info = std::move(changed);
}

bool People::removePerson(const std::string& employeeNo) {
    const Person* person = persons_.find(employeeNo);
    if (!person) return false;
    for (const std::string& card : person->cards)
        cards_.erase(card);
    fingerprintCount_ -= person->fingerprints.size();
    return persons_.erase(employeeNo);
}

void People::clear() {
    persons_.clear();
    cards_.clear();
    fingerprintCount_ = 0;
}

void People::addCard(const Json::Value& info) {
    checkCard(info);
    const std::string cardNo = info["cardNo"].asString();
    Person& owner = personToChange(info["employeeNo"].asString());
    if (cards_.find(cardNo)) throw Refused(kCardNoAlreadyExist);
    if (cards_.size() >= capacity_.cards) throw Refused(kDeviceCardFull);
    if (owner.cards.size() >= capacity_.cardsPerPerson) throw Refused(kCardFullPerUser);
    cards_.add(cardNo, {info}).info["cardType"] = textOr(info, "cardType", "normalCard");
    owner.cards.push_back(cardNo);
}

// A card may go over to another person.
void People::modifyCard(const Json::Value& changes) {
    checkCard(changes);
    Card* card = cards_.find(changes["cardNo"].asString());
    if (!card) throw Refused(kInternalError);  // how devices tell that there is no such card
    Person& owner = personToChange(changes["employeeNo"].asString());
    if (owner.employeeNo() != card->employeeNo()) {
        if (owner.cards.size() >= capacity_.cardsPerPerson) throw Refused(kCardFullPerUser);
        std::erase(personToChange(card->employeeNo()).cards, card->cardNo());
        owner.cards.push_back(card->cardNo());
    }
    mergeInto(card->info, changes);
}

void People::removeCard(const std::string& cardNo) {
    const Card* card = cards_.find(cardNo);
    if (!card) return;
    std::erase(personToChange(card->employeeNo()).cards, cardNo);
    cards_.erase(cardNo);
}

void People::addFingerprint(const std::string& employeeNo, unsigned id, Fingerprint fingerprint) {
    Person& owner = personToChange(employeeNo);
    if (id < 1 || id > 10) throw Refused(kErrorFingerId);
    if (owner.fingerprints.contains(id)) throw Refused(kFingerPrintIdAlreadyExist);
    if (fingerprintCount_ >= capacity_.fingerprints) throw Refused(kFingerprintFull);
    if (owner.fingerprints.size() >= capacity_.fingerprintsPerPerson) throw Refused(kFingerprintFullPerUser);
    owner.fingerprints.emplace(id, std::move(fingerprint));
    ++fingerprintCount_;
}

Fingerprint& People::fingerprint(const Json::Value& condition) {
    Person& owner = personToChange(textIn(condition, "employeeNo"));
    const auto found = owner.fingerprints.find(numberIn(condition, "fingerPrintID"));
    if (found == owner.fingerprints.end()) throw Refused(kErrorFingerId);
    if (!found->second.readers.contains(numberIn(condition, "cardReaderNo")))
        throw Refused(kIllegalCardReaderNo);
    return found->second;
}

// A finger that no reader knows any more is gone.
void People::removeFingerprints(const std::string& employeeNo, const std::set<unsigned>& ids,
                                const std::set<unsigned>& readers) {
    Person& owner = personToChange(employeeNo);
    for (auto& [id, fingerprint] : owner.fingerprints) {
        if (!ids.empty() && !ids.contains(id)) continue;
        std::erase_if(fingerprint.readers,
                      [&](unsigned reader) { return readers.empty() || readers.contains(reader); });
    }
    fingerprintCount_ -=
        std::erase_if(owner.fingerprints, [](const auto& entry) { return entry.second.readers.empty(); });
}

}  // namespace veltasim
