#include "clock.h"

#include <array>
#include <cstdio>

#include "scanner.h"

namespace veltasim {

using std::chrono::seconds;
using std::chrono::sys_seconds;

sys_seconds Clock::now() const {
    return base_ + std::chrono::floor<seconds>(std::chrono::steady_clock::now() - setAt_);
}

void Clock::set(sys_seconds time) {
    base_ = time;
    setAt_ = std::chrono::steady_clock::now();
}

void Clock::setZone(std::string text) {
    zone_ = parseZone(text);
    zoneText_ = std::move(text);
}

std::string Clock::localTime() const {
    const sys_seconds utc = now();
    const seconds offset = zone_.offsetAt(utc);
    const auto day = std::chrono::floor<std::chrono::days>(utc + offset);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(utc + offset - day);
    const std::chrono::hh_mm_ss shift(offset);
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02ld:%02ld:%02ld%c%02ld:%02ld",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), time.hours().count(), time.minutes().count(),
                  time.seconds().count(), shift.is_negative() ? '-' : '+', shift.hours().count(),
                  shift.minutes().count());
    return text.data();
}

std::optional<sys_seconds> Clock::instantOf(std::string_view text) const {
    Scanner scanner(text);
    const std::chrono::year year(scanner.number(4, 4));
    scanner.skip("-");
    const std::chrono::month month(static_cast<unsigned>(scanner.number(2, 2)));
    scanner.skip("-");
    const std::chrono::day day(static_cast<unsigned>(scanner.number(2, 2)));
    scanner.skip("T");
    const seconds time = scanner.time();

    const std::chrono::year_month_day date(year, month, day);
    if (!date.ok() || time >= std::chrono::days(1)) return std::nullopt;
    const sys_seconds local = std::chrono::sys_days(date) + time;
    seconds offset{0};
    const bool isEast = scanner.skipIf("+");
    if (isEast || scanner.skipIf("-")) {
        const std::chrono::hours hours(scanner.number(2, 2));
        scanner.skip(":");
        offset = (hours + std::chrono::minutes(scanner.number(2, 2))) * (isEast ? 1 : -1);
    } else if (!scanner.skipIf("Z")) {
        offset = zone_.offsetAt(local - zone_.standard);
    }
    if (!scanner.isAtEnd()) return std::nullopt;
    return local - offset;
}

}  // namespace veltasim
