#include "replay/player.h"

#include <algorithm>
#include <iterator>

#include "json_text.h"
#include "replay/left_out.h"

namespace veltasim {
namespace {

constexpr const char* kSearchName = "searchID";

// Whether a request may be the recorded one: names of searches are new each time, and of what a trace has left out
// nothing is known.
bool fits(const Json::Value& recorded, const Json::Value& asked) {
    if (recorded.isString() && isLeftOut(recorded.asString())) return true;
    if (recorded.type() != asked.type() || recorded.size() != asked.size()) return false;
    if (recorded.isArray()) return std::equal(recorded.begin(), recorded.end(), asked.begin(), fits);
    if (!recorded.isObject()) return recorded == asked;
    const std::vector<std::string> names = recorded.getMemberNames();
    return std::ranges::all_of(names, [&](const std::string& name) {
        return asked.isMember(name) && (name == kSearchName || fits(recorded[name], asked[name]));
    });
}

}  // namespace

Player::Player(const Recording& recording) : recording_(recording), used_(recording.answers.size()) {
    for (const RecordedAnswer& answer : recording.answers)
        parseJson(answer.requestBody, bodies_.emplace_back());
}

const RecordedAnswer* Player::next(const RequestRecord& request) {
    const std::vector<RecordedAnswer>& answers = recording_.answers;
    std::vector<size_t> found;
    for (size_t i = 0; i < answers.size(); ++i) {
        if (answers[i].method == request.method && answers[i].target == request.target) found.push_back(i);
    }
    std::vector<size_t> sameBody;
    Json::Value body;
    parseJson(request.body, body);
    std::ranges::copy_if(found, std::back_inserter(sameBody), [&](size_t i) {
        return answers[i].requestBody == request.body || (!body.isNull() && fits(bodies_[i], body));
    });
    if (!sameBody.empty()) found = std::move(sameBody);
    if (found.empty()) return nullptr;
    const auto unused = std::ranges::find_if(found, [this](size_t i) { return !used_[i]; });
    const size_t chosen = unused == found.end() ? found.back() : *unused;
    used_[chosen] = true;
    return &answers[chosen];
}

}  // namespace veltasim
