// velta-host cards: the cards of persons.

#include <CLI/CLI.hpp>

#include "access_searches.h"
#include "command_group.h"
#include "listing.h"

namespace host {
namespace {

constexpr const char* kListFooter = R"(
Examples:
  velta-host cards list --device 192.168.1.20
  velta-host cards list --device 192.168.1.20 --employee 1001
  velta-host cards list --device 192.168.1.20 --card 1234567890 --json | jq -r .card.employeeNo)";
constexpr const char* kAddFooter = R"(
Examples:
  velta-host cards add --device 192.168.1.20 --employee 1001 --card 1234567890
  velta-host cards add --device 192.168.1.20 --employee 1001 --card 1234567891 --type patrolCard)";
constexpr const char* kModifyFooter = R"(
The card becomes the card of the person that is given.

Examples:
  velta-host cards modify --device 192.168.1.20 --employee 1001 --card 1234567890 --type superCard)";
constexpr const char* kDeleteFooter = R"(
A card that the device does not know counts as deleted.

Examples:
  velta-host cards delete --device 192.168.1.20 --card 1234567890 1234567891
  velta-host cards delete --device 192.168.1.20 --employee 1001)";

constexpr const char* kRecord = "/VELTA/AccessControl/CardInfo/Record";
constexpr const char* kModify = "/VELTA/AccessControl/CardInfo/Modify";
constexpr const char* kDelete = "/VELTA/AccessControl/CardInfo/Delete";

constexpr Column kColumns[] = {{"CARD", "cardNo"}, {"TYPE", "cardType"}, {"EMPLOYEE", "employeeNo"}};

struct WhichOptions : DeviceOptions {
    std::vector<std::string> employees;
    std::vector<std::string> cards;

    Json::Value condition() const {
        Json::Value condition = Json::objectValue;
        if (!employees.empty()) condition["EmployeeNoList"] = objectsOf("employeeNo", employees);
        if (!cards.empty()) condition["CardNoList"] = objectsOf("cardNo", cards);
        return condition;
    }
};
struct CardOptions : DeviceOptions {
    std::string employee;
    std::string card;
    std::string type;
};

ExitCode listCards(const Site& site, const WhichOptions& options) {
    return listAll(site, "card", kColumns, kCardSearch, options.condition());
}

ExitCode writeCard(const Site& site, const CardOptions& options, const char* method, const char* uri,
                   const char* done) {
    Json::Value body;
    Json::Value& card = body["CardInfo"];
    card["employeeNo"] = options.employee;
    card["cardNo"] = options.card;
    if (!options.type.empty()) card["cardType"] = options.type;
    site.ask(method, uri, body);
    Json::Value json;
    json["card"] = card;
    json["done"] = done;
    site.report("card", "card " + options.card + " of employee " + options.employee + " " + done, json);
    return ExitCode::Ok;
}

ExitCode addCard(const Site& site, const CardOptions& options) {
    return writeCard(site, options, "POST", kRecord, "added");
}
ExitCode modifyCard(const Site& site, const CardOptions& options) {
    return writeCard(site, options, "PUT", kModify, "modified");
}

ExitCode deleteCards(const Site& site, const WhichOptions& options) {
    Json::Value body;
    body["CardInfoDelCond"] = options.condition();
    site.ask("PUT", kDelete, body);
    const std::string which = options.cards.empty()
                                  ? "the cards of " + counted(options.employees.size(), "person")
                                  : counted(options.cards.size(), "card");
    site.report("deletion", which + " deleted", body);
    return ExitCode::Ok;
}

void addCardOptions(CLI::App& command, CardOptions& options) {
    addTexts(command, {{"--employee", "NO", "Employee number of its person", &options.employee, true},
                       {"--card", "NO", "Card number", &options.card, true}});
    command
        .add_option("--type", options.type,
                    "normalCard, patrolCard, hijackCard, superCard, dismissingCard or emergencyCard")
        ->type_name("TYPE")
        ->check(CLI::IsMember({"normalCard", "patrolCard", "hijackCard", "superCard", "dismissingCard",
                               "emergencyCard"})
                    .description(""));
}

void addWhich(CLI::App& command, WhichOptions& options) {
    addList(command, "--card", "NO", "Cards with these numbers", options.cards);
    addList(command, "--employee", "NO", "Cards of persons with these employee numbers", options.employees);
}

}  // namespace

void addCardsCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CommandGroup group(app, "cards", "List, add, modify and delete the cards of persons", common, run);
    const auto list = std::make_shared<WhichOptions>();
    CLI::App& listCommand = group.add({"list", "List cards", kListFooter}, list, listCards);
    addWhich(addChoice(listCommand, "Which (all otherwise)", Choice::Optional), *list);
    const auto add = std::make_shared<CardOptions>();
    addCardOptions(group.add({"add", "Give a person a card", kAddFooter}, add, addCard), *add);
    const auto modify = std::make_shared<CardOptions>();
    addCardOptions(group.add({"modify", "Change a card", kModifyFooter}, modify, modifyCard), *modify);
    const auto removal = std::make_shared<WhichOptions>();
    CLI::App& deleteCommand = group.add({"delete", "Delete cards", kDeleteFooter}, removal, deleteCards);
    addWhich(addChoice(deleteCommand, "Which", Choice::Required), *removal);
}

}  // namespace host
