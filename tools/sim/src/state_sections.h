#pragma once

#include <json/json.h>

#include <span>

#include "access/access.h"

namespace veltasim {

// A part of the text, each one array of records.
struct Section {
    const char* name;
    Json::Value (*save)(const Access& access);
    // Throws Refused, or what jsoncpp throws.
    void (*load)(Access& access, const Json::Value& record, size_t index, const Clock& clock);
};

// In the order in which they can be loaded.
std::span<const Section> stateSections();

}  // namespace veltasim
