#include "faults.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "status.h"

namespace veltasim {
namespace {

struct KindRow {
    FaultKind kind;
    std::string_view name;
    int64_t defaultAmount;
    bool strikesOpening;  // of a stream, and not its parts
};

constexpr std::array kKinds{
    KindRow{FaultKind::HangBefore, "hang-before", 0, true},
    KindRow{FaultKind::HangMidway, "hang-midway", 0, false},
    KindRow{FaultKind::Drop, "drop", 0, false},
    KindRow{FaultKind::WrongLength, "wrong-length", 16, false},
    KindRow{FaultKind::MalformedBody, "malformed", 0, false},
    KindRow{FaultKind::HttpError, "http-error", 500, true},
    KindRow{FaultKind::Status, "status", kBadParameters, true},
    KindRow{FaultKind::SlowBytes, "slow", 100, false},
    KindRow{FaultKind::StaleNonce, "stale-nonce", 0, true},
};

const KindRow& rowOf(FaultKind kind) {
    return *std::find_if(kKinds.begin(), kKinds.end(),
                         [kind](const KindRow& row) { return row.kind == kind; });
}

bool strikesAt(const KindRow& row, Faults::Moment moment) {
    return moment == Faults::Moment::Answer ||
           row.strikesOpening == (moment == Faults::Moment::StreamOpening);
}

template <typename Number>
bool readNumber(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

// Takes the text before the first separator off the front of rest.
std::string_view cutField(std::string_view& rest, char separator) {
    const size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
}

}  // namespace

std::string_view nameOf(FaultKind kind) {
    return rowOf(kind).name;
}

std::optional<Fault> parseFault(std::string_view text) {
    std::string_view amount = cutField(text, ',');
    const std::string_view name = cutField(amount, '=');
    const auto* row =
        std::find_if(kKinds.begin(), kKinds.end(), [name](const KindRow& r) { return r.name == name; });
    Fault fault;
    if (row == kKinds.end() || (!amount.empty() && !readNumber(amount, fault.amount))) return std::nullopt;
    fault.kind = row->kind;
    while (!text.empty()) {
        std::string_view value = cutField(text, ',');
        const std::string_view key = cutField(value, '=');
        if (key == "path")
            fault.path = value;
        else if (key != "count" || !readNumber(value, fault.count))
            return std::nullopt;
    }
    return fault;
}

void Faults::add(const Fault& fault) {
    const std::lock_guard lock(mutex_);
    faults_.push_back(fault);
}

void Faults::clear(std::optional<FaultKind> kind) {
    const std::lock_guard lock(mutex_);
    std::erase_if(faults_, [kind](const Fault& fault) { return !kind || fault.kind == *kind; });
}

std::vector<Fault> Faults::all() const {
    const std::lock_guard lock(mutex_);
    return {faults_.begin(), faults_.end()};
}

std::optional<Fault> Faults::strike(std::string_view path, Moment moment) {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(faults_.begin(), faults_.end(), [&](const Fault& fault) {
        return path.starts_with(fault.path) && strikesAt(rowOf(fault.kind), moment);
    });
    if (found == faults_.end()) return std::nullopt;
    Fault fault = *found;
    if (fault.amount == 0) fault.amount = rowOf(fault.kind).defaultAmount;
    if (found->count != Fault::kForEver && --found->count == 0) faults_.erase(found);
    return fault;
}

}  // namespace veltasim
