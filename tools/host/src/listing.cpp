#include "listing.h"

#include <json/json.h>

#include <algorithm>

#include "table.h"
#include "text.h"

namespace host {
namespace {

// A record stays on its line.
std::string cellText(const Column& column, const Json::Value& record) {
    const std::string path = column.path;
    const Json::Value found = path.empty() ? record : Json::Path("." + path).resolve(record);
    std::string text;
    if (column.text != nullptr)
        text = column.text(found);
    else if (found.isConvertibleTo(Json::stringValue))
        text = found.asString();
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\t'; }, '?');
    return text.empty() ? "-" : text;
}

}  // namespace

Listing::Listing(const Site& site, const char* type, std::span<const Column> columns)
    : site_(site), type_(type), columns_(columns) {}

void Listing::page(const Json::Value& records) {
    std::vector<std::vector<std::string>> rows;
    if (isEmpty_ && !records.empty()) {
        std::vector<std::string>& titles = rows.emplace_back();
        for (const Column& column : columns_)
            titles.emplace_back(column.title);
    }
    for (const Json::Value& record : records) {
        isEmpty_ = false;
        if (site_.host.console.isJson()) {
            Json::Value members;
            members[type_] = record;
            site_.report(type_.c_str(), "", members);
            continue;
        }
        std::vector<std::string>& row = rows.emplace_back();
        for (const Column& column : columns_)
            row.push_back(cellText(column, record));
    }
    if (!site_.host.console.isJson() && !rows.empty()) site_.host.console.text(table(rows, widths_));
}

void Listing::end() {
    if (isEmpty_) site_.host.console.note("velta-host: nothing found");
}

ExitCode listAll(const Site& site, const char* type, std::span<const Column> columns, const SearchKind& kind,
                 const Json::Value& condition, Pager pager) {
    Listing listing(site, type, columns);
    Search search(site, kind, condition, pager);
    while (const auto page = search.next())
        listing.page(*page);
    listing.end();
    return ExitCode::Ok;
}

}  // namespace host
