// Records of a device, printed as they come: a table whose columns only grow, or one JSON object per line.
#pragma once

#include <json/value.h>

#include <span>
#include <string>
#include <vector>

#include "search.h"

namespace host {

struct Column {
    const char* title;
    const char* path;                                   // below a record; empty: the record
    std::string (*text)(const Json::Value&) = nullptr;  // null: a scalar as it stands
};

class Listing {
 public:
    // type: what a record is, in JSON.
    Listing(const Site& site, const char* type, std::span<const Column> columns);

    void page(const Json::Value& records);
    void end();  // tells when there was nothing

 private:
    const Site& site_;
    const std::string type_;
    const std::span<const Column> columns_;
    std::vector<size_t> widths_;
    bool isEmpty_ = true;
};

// All that a search finds.
ExitCode listAll(const Site& site, const char* type, std::span<const Column> columns, const SearchKind& kind,
                 const Json::Value& condition, Pager pager = Pager());

}  // namespace host
