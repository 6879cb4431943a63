/* What hosts may send, as tables of rules. */
#ifndef VELTA_TRANSLATE_HOSTRULES_H
#define VELTA_TRANSLATE_HOSTRULES_H

#include <json/value.h>

#include <cstddef>
#include <span>

namespace velta {

/* Integers fit 32 bits, Unsigned ones are not negative; 1.0 and 1e3 are integers, "1" and true are none. */
enum class JsonType { Any, Bool, Integer, Unsigned, String, Object, Array };
enum class Presence { Required, Optional };

struct HostRule;

/* The rows for the members of one object. Members without a row may be anything. */
struct HostRules {
    constexpr HostRules() = default;
    template <size_t N>
    constexpr HostRules(
        const HostRule (&table)[N])  // NOLINT(google-explicit-constructor): a table is its rows
        : rows(table), count(N) {}

    const HostRule* rows = nullptr;
    size_t count = 0;
};

struct HostRule {
    const char* member;
    Presence
        presence; /* a member that is null is there, and of no type but Any; Required wants more than null */
    JsonType type;
    std::span<const char* const> values = {}; /* of a string, in this spelling; empty: any */
    HostRules members = {}; /* of an object, or of every item of an array, then all objects */
};

/* Whether value is an object that keeps the rules; logs the first member that does not. */
bool keepsRules(const Json::Value& value, const HostRules& rules);

}  // namespace velta

#endif
