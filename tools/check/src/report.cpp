#include "report.h"

#include <json/json.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

namespace check {
namespace {

struct EndingName {
    const char* inTable;
    const char* inJson;
};
constexpr std::array<EndingName, 4> kEndings{
    {{"ok", "passed"}, {"FAIL", "failed"}, {"CRASHED", "crashed"}, {"HUNG", "hung"}}};

const EndingName& nameOf(Ending ending) {
    return kEndings[static_cast<size_t>(ending)];
}

long countOf(const std::vector<Outcome>& outcomes, Ending ending) {
    return std::count_if(outcomes.begin(), outcomes.end(),
                         [&](const Outcome& outcome) { return outcome.ending == ending; });
}

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string secondsText(double seconds) {
    const auto tenths = std::lround(seconds * 10);
    const std::string text = std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
    return std::string(text.size() < 7 ? 7 - text.size() : 0, ' ') + text;
}

template <typename Items, typename CheckOf>
size_t widestId(const Items& items, CheckOf checkOf) {
    size_t width = 0;
    for (const auto& item : items)
        width = std::max(width, checkOf(item).id().size());
    return width;
}

// An empty line between the groups.
class Groups {
 public:
    std::string before(const Check& check) {
        std::string gap = check.group == group_ || group_.empty() ? "" : "\n";
        group_ = check.group;
        return gap;
    }

 private:
    std::string_view group_;
};

std::string indented(const std::string& text, const std::string& indent) {
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);)
        result += indent + line + "\n";
    return result;
}

std::string details(const Outcome& outcome) {
    std::string text = outcome.check.id() + "  " + nameOf(outcome.ending).inTable +
                       "\n  promised: " + std::string(outcome.check.promise) + "\n";
    for (const Finding& finding : outcome.findings) {
        text += "  " + finding.what + "\n";
        if (!finding.expected.empty())
            text += "      expected  " + finding.expected + "\n      found     " + finding.found + "\n";
    }
    if (!outcome.cause.empty()) text += "  " + outcome.cause + "\n";
    if (!outcome.lastWords.empty())
        text += "  the last lines of its output:\n" + indented(outcome.lastWords, "      ");
    return text;
}

std::string counts(const std::vector<Outcome>& outcomes) {
    std::string text = std::to_string(outcomes.size()) + " checks: ";
    for (size_t i = 0; i < kEndings.size(); ++i)
        text += (i == 0 ? "" : ", ") + std::to_string(countOf(outcomes, static_cast<Ending>(i))) + " " +
                kEndings[i].inJson;
    return text;
}

Json::Value jsonOf(const Outcome& outcome) {
    Json::Value value;
    value["group"] = std::string(outcome.check.group);
    value["name"] = std::string(outcome.check.name);
    value["promise"] = std::string(outcome.check.promise);
    value["result"] = nameOf(outcome.ending).inJson;
    value["seconds"] = std::round(outcome.seconds * 1000) / 1000;
    value["findings"] = Json::arrayValue;
    for (const Finding& finding : outcome.findings) {
        Json::Value& entry = value["findings"].append(Json::objectValue);
        entry["what"] = finding.what;
        if (finding.expected.empty()) continue;
        entry["expected"] = finding.expected;
        entry["found"] = finding.found;
    }
    if (!outcome.cause.empty()) value["cause"] = outcome.cause;
    if (!outcome.lastWords.empty()) value["lastWords"] = outcome.lastWords;
    return value;
}

}  // namespace

std::string listing(const std::vector<Check>& checks) {
    const size_t width = widestId(checks, [](const Check& check) { return check; });
    std::string text;
    Groups groups;
    for (const Check& check : checks)
        text += groups.before(check) + padded(check.id(), width) + "  " + std::string(check.promise) + "\n";
    return text + "\n" + std::to_string(checks.size()) + " checks\n";
}

std::string textReport(const std::string& libraryPath, const std::vector<Outcome>& outcomes) {
    const size_t width = widestId(outcomes, [](const Outcome& outcome) { return outcome.check; });
    std::string text = libraryPath + "\n\n";
    std::string found;
    Groups groups;
    for (const Outcome& outcome : outcomes) {
        text += groups.before(outcome.check) + padded(outcome.check.id(), width) + "  " +
                padded(nameOf(outcome.ending).inTable, 7) + secondsText(outcome.seconds) + "  " +
                std::string(outcome.check.promise) + "\n";
        if (outcome.ending != Ending::Passed) found += "\n" + details(outcome);
    }
    if (!found.empty()) text += "\nFindings\n" + found;
    return text + "\n" + counts(outcomes) + "\n";
}

std::string jsonReport(const std::string& libraryPath, const std::vector<Outcome>& outcomes) {
    Json::Value document;
    document["library"] = libraryPath;
    document["checks"] = Json::arrayValue;
    for (const Outcome& outcome : outcomes)
        document["checks"].append(jsonOf(outcome));
    for (size_t i = 0; i < kEndings.size(); ++i)
        document[kEndings[i].inJson] = Json::Int64{countOf(outcomes, static_cast<Ending>(i))};
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["precision"] = 6;
    return Json::writeString(builder, document) + "\n";
}

bool allPassed(const std::vector<Outcome>& outcomes) {
    return countOf(outcomes, Ending::Passed) == static_cast<long>(outcomes.size());
}

}  // namespace check
