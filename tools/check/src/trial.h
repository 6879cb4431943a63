// What a check is given: the library's path, a time limit, and somewhere to put what it finds.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace check {

struct Finding {
    std::string what;
    std::string expected;
    std::string found;

    bool operator==(const Finding&) const = default;
};

// Ends a check whose next steps make no sense after a finding.
struct Stop {};

// Text of a value as findings show it: quoted, shortened, bytes that can't be printed as \xNN.
std::string shown(std::string_view text);
std::string shownCode(uint32_t code);  // "-1", "0", "0x60000001"

class Trial {
 public:
    using Clock = std::chrono::steady_clock;
    using Report = std::function<void(const Finding&)>;

    Trial(std::string libraryPath, Clock::time_point end, Report report);

    const std::string& libraryPath() const { return libraryPath_; }
    bool hasFindings() const { return hasFindings_; }

    // Each of these says whether it was so, and reports a finding otherwise.
    bool holds(const std::string& statement, bool isSo) {
        if (!isSo) report({"not so: " + statement, "", ""});
        return isSo;
    }
    bool code(const std::string& what, uint32_t expected, int64_t found);
    bool text(const std::string& what, std::string_view expected, std::string_view found);
    bool contains(const std::string& what, std::string_view part, std::string_view found);
    bool number(const std::string& what, auto expected, auto found) {
        return sameNumber(what, static_cast<int64_t>(expected), static_cast<int64_t>(found));
    }

    void must(bool isSo) const {
        if (!isSo) throw Stop{};
    }
    // Waits for what another thread brings about, until the time of the check is nearly over.
    bool becomes(const std::string& statement, const std::function<bool()>& condition);

 private:
    bool report(const Finding& finding);  // always false
    bool sameNumber(const std::string& what, int64_t expected, int64_t found);

    const std::string libraryPath_;
    const Clock::time_point end_;
    const Report report_;
    bool hasFindings_ = false;
};

}  // namespace check
