// A search in a device, page by page, so that no list has to be kept.
#pragma once

#include <optional>
#include <string>

#include "pager.h"
#include "site.h"

namespace host {

struct SearchKind {
    const char* uri;
    const char* condition;  // member of the request
    const char* result;     // member of the answer
    const char* list;       // member of the result
};

// Devices keep what they have found under this name for a while.
std::string newSearchId();

class Search {
 public:
    Search(const Site& site, const SearchKind& kind, const Json::Value& condition, Pager pager = Pager());

    // The records of the next page; nothing behind the last one. Throws Failure.
    std::optional<Json::Value> next();
    uint64_t total() const { return pager_.total(); }

 private:
    const Site& site_;
    const SearchKind& kind_;
    Json::Value condition_;
    Pager pager_;
};

}  // namespace host
