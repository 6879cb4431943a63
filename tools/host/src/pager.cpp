#include "pager.h"

#include <algorithm>
#include <string>

#include "text.h"

namespace host {
namespace {

constexpr uint64_t kMostPerPage = 30;  // what devices give at a time

uint64_t number(const Json::Value& page, const char* name) {
    const Json::Value found = page.isObject() ? page[name] : Json::Value();
    return found.isUInt64() ? found.asUInt64() : 0;
}

}  // namespace

uint64_t Pager::pageSize() const {
    return std::min(left_, kMostPerPage);
}

// Without matches there is no way on, whatever else the page says.
void Pager::advance(const Json::Value& page) {
    const uint64_t matches = number(page, "numOfMatches");
    total_ = number(page, "totalMatches");
    position_ += matches;
    if (left_ != kNoLimit) left_ -= std::min(matches, left_);
    const std::string status = member(page, "responseStatusStrg");
    isAtEnd_ = matches == 0 || (status.empty() ? position_ >= total_ : status != "MORE");
}

}  // namespace host
