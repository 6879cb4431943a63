#include "json_values.h"
#include "resources/access.h"
#include "resources/search_page.h"

namespace veltasim {
namespace {

void refuseBothLists(const Json::Value& condition) {
    if (condition.isMember("EmployeeNoList") && condition.isMember("CardNoList"))
        throw Refused(badParameter("CardNoList"));
}

// All cards of persons, in the order of the list.
std::vector<std::string> cardsOf(const People& people, const std::vector<std::string>& employeeNos) {
    std::vector<std::string> cards;
    for (const std::string& employeeNo : employeeNos) {
        if (const Person* person = people.persons().find(employeeNo))
            cards.insert(cards.end(), person->cards.begin(), person->cards.end());
    }
    return cards;
}

}  // namespace

Reply postCard(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    call.state.access.people.addCard(objectIn(body, "CardInfo"));
    return done(call);
}

Reply putCard(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    call.state.access.people.modifyCard(objectIn(body, "CardInfo"));
    return done(call);
}

// A condition that names nothing is refused: it would mean every card.
Reply putCardDelete(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    const Json::Value& condition = objectIn(body, "CardInfoDelCond");
    refuseBothLists(condition);
    People& people = call.state.access.people;
    const bool byPerson = condition.isMember("EmployeeNoList");
    const auto cards = byPerson ? cardsOf(people, textsIn(condition, "EmployeeNoList", "employeeNo"))
                                : textsIn(condition, "CardNoList", "cardNo");
    for (const std::string& card : cards)
        people.removeCard(card);
    return done(call);
}

Reply getCardCount(const Call& call) {
    Json::Value answer;
    answer["CardInfoCount"]["cardNumber"] = Json::UInt64(call.state.access.people.cards().size());
    return jsonReply(answer);
}

Reply postCardSearch(const Call& call) {
    const Json::Value body = readObject(call.request.body);
    const Json::Value& condition = objectIn(body, "CardInfoSearchCond");
    refuseBothLists(condition);
    const People& people = call.state.access.people;
    std::vector<const Card*> matches;
    if (condition.isMember("EmployeeNoList")) {
        for (const std::string& card : cardsOf(people, textsIn(condition, "EmployeeNoList", "employeeNo")))
            matches.push_back(people.cards().find(card));
    } else {
        matches = chosen(people.cards(), condition, "CardNoList", "cardNo");
    }
    return pageReply("CardInfoSearch", condition, matches, "CardInfo",
                     [](const Card& card) { return card.info; });
}

}  // namespace veltasim
