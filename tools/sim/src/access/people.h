#pragma once

#include <json/json.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include <veltasim/options.h>

#include "access/table.h"
#include "clock.h"

namespace veltasim {

struct Fingerprint {
    std::string type;
    std::string data;  // the template as the host encoded it
    std::set<unsigned> readers;
    Json::Value leaderFp;  // null: none
};

struct Person {
    Json::Value info;  // "UserInfo" as it came
    std::vector<std::string> cards;
    std::map<unsigned, Fingerprint> fingerprints;  // by "fingerPrintID"

    std::string employeeNo() const { return info["employeeNo"].asString(); }
    std::string name() const;
};

struct Card {
    Json::Value info;  // "CardInfo" as it came

    std::string cardNo() const { return info["cardNo"].asString(); }
    std::string employeeNo() const { return info["employeeNo"].asString(); }
};

// The persons and what they carry: cards and fingers, which go with them. Whatever cannot be done is refused, by
// throwing Refused, and then nothing has changed.
class People {
 public:
    People(const Capacity& capacity, unsigned doors) : capacity_(capacity), doors_(doors) {}

    const Table<Person>& persons() const { return persons_; }
    const Table<Card>& cards() const { return cards_; }
    const Person& person(const std::string& employeeNo) const;

    void addPerson(const Json::Value& info, const Clock& clock);
    void modifyPerson(const Json::Value& changes, const Clock& clock);
    bool removePerson(const std::string& employeeNo);  // false: there is none
    void clear();

    void addCard(const Json::Value& info);
    void modifyCard(const Json::Value& changes);
    void removeCard(const std::string& cardNo);  // no matter whether there is one

    void addFingerprint(const std::string& employeeNo, unsigned id, Fingerprint fingerprint);
    // The finger that the condition names by "employeeNo", "fingerPrintID" and "cardReaderNo".
    Fingerprint& fingerprint(const Json::Value& condition);
    void removeFingerprints(const std::string& employeeNo, const std::set<unsigned>& ids,
                            const std::set<unsigned>& readers);  // empty sets: all
    size_t fingerprintCount() const { return fingerprintCount_; }

 private:
    Person& personToChange(const std::string& employeeNo);

    Capacity capacity_;
    unsigned doors_;
    Table<Person> persons_;
    Table<Card> cards_;
    size_t fingerprintCount_ = 0;
};

}  // namespace veltasim
