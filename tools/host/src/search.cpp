#include "search.h"

#include <random>

#include "text.h"

namespace host {
std::string newSearchId() {
    std::random_device random;
    return hexText(random()).substr(2) + hexText(random()).substr(2);
}

Search::Search(const Site& site, const SearchKind& kind, const Json::Value& condition, Pager pager)
    : site_(site), kind_(kind), condition_(condition), pager_(pager) {
    condition_["searchID"] = newSearchId();
}

std::optional<Json::Value> Search::next() {
    if (pager_.isAtEnd()) return std::nullopt;
    Json::Value body;
    Json::Value& condition = body[kind_.condition] = condition_;
    condition["searchResultPosition"] = Json::UInt64(pager_.position());
    condition["maxResults"] = Json::UInt64(pager_.pageSize());
    const Json::Value answer = site_.ask("POST", kind_.uri, body);
    const Json::Value page = answer.isObject() ? answer[kind_.result] : Json::Value();
    if (!page.isObject()) throw Failure(ExitCode::Failed, std::string("the answer has no ") + kind_.result);
    pager_.advance(page);
    const Json::Value& list = page[kind_.list];
    return list.isArray() ? list : Json::Value(Json::arrayValue);
}

}  // namespace host
