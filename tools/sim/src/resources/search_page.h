#pragma once

#include <json/json.h>

#include <algorithm>
#include <vector>

#include "access/table.h"
#include "json_values.h"

namespace veltasim {

constexpr size_t kMostPerPage = 30;

// Adds to the answer the page that the condition asks for of all that matches.
template <typename Record, typename ToJson>
void addPage(Json::Value& answer, const Json::Value& condition, const std::vector<const Record*>& matches,
             const char* listName, ToJson toJson) {
    const size_t asked = numberIn(condition, "maxResults");
    const size_t first = std::min<size_t>(numberIn(condition, "searchResultPosition"), matches.size());
    const size_t count = std::min({asked, kMostPerPage, matches.size() - first});
    const bool more = first + count < matches.size();
    answer["responseStatusStrg"] = more ? "MORE" : count == 0 ? "NO MATCH" : "OK";
    answer["numOfMatches"] = Json::UInt64(count);
    answer["totalMatches"] = Json::UInt64(matches.size());
    for (size_t i = first; i < first + count; ++i)
        answer[listName].append(toJson(*matches[i]));
}

// The same for a search by number, as {rootName: {...}}.
template <typename Record, typename ToJson>
Reply pageReply(const char* rootName, const Json::Value& condition, const std::vector<const Record*>& matches,
                const char* listName, ToJson toJson) {
    Json::Value answer;
    Json::Value& root = answer[rootName];
    root["searchID"] = textIn(condition, "searchID");
    addPage(root, condition, matches, listName, toJson);
    return jsonReply(answer);
}

template <typename Record>
std::vector<const Record*> allOf(const Table<Record>& table) {
    std::vector<const Record*> records;
    records.reserve(table.size());
    for (const Record& record : table)
        records.push_back(&record);
    return records;
}

// Those records whose keys are in the array of the condition, or all if it has no such array.
template <typename Record>
std::vector<const Record*> chosen(const Table<Record>& table, const Json::Value& condition,
                                  const char* arrayName, const char* keyName) {
    if (!condition.isMember(arrayName)) return allOf(table);
    std::vector<const Record*> records;
    for (const std::string& key : textsIn(condition, arrayName, keyName)) {
        if (const Record* record = table.find(key)) records.push_back(record);
    }
    return records;
}

}  // namespace veltasim
