#include "zone.h"

#include "scanner.h"

namespace veltasim {
namespace {

using std::chrono::local_days;
using std::chrono::local_seconds;
using std::chrono::seconds;
using std::chrono::sys_seconds;

// ",M3.5.0/02:00:00"
YearlySwitch scanSwitch(Scanner& scanner) {
    const auto number = [&scanner](size_t mostDigits) {
        return static_cast<unsigned>(scanner.number(1, mostDigits));
    };
    YearlySwitch result;
    scanner.skip(",M");
    result.month = number(2);
    scanner.skip(".");
    result.week = number(1);
    scanner.skip(".");
    result.weekday = number(1);
    scanner.skip("/");
    result.time = scanner.time();
    return result;
}

}  // namespace

local_seconds YearlySwitch::in(std::chrono::year year) const {
    const std::chrono::month inMonth(month);
    const std::chrono::weekday day(weekday);
    if (week == 5) return local_days(year / inMonth / day[std::chrono::last]) + time;
    return local_days(year / inMonth / day[week]) + time;
}

seconds Zone::offsetAt(sys_seconds time) const {
    if (!begin.isGood() || !end.isGood()) return standard;
    const local_seconds local(time.time_since_epoch() + standard);
    const std::chrono::year_month_day date(std::chrono::floor<std::chrono::days>(local));
    const local_seconds from = begin.in(date.year());
    const local_seconds to = end.in(date.year()) - summer;
    // South of the equator the summer spans the turn of the year.
    const bool isSummer = from < to ? from <= local && local < to : from <= local || local < to;
    return isSummer ? standard + summer : standard;
}

Zone parseZone(const std::string& text) {
    Scanner scanner(text);
    Zone zone;
    scanner.skip("CST");
    const bool isEast = scanner.skipIf("-");
    if (!isEast) scanner.skipIf("+");
    zone.standard = scanner.time() * (isEast ? 1 : -1);
    if (scanner.skipIf("DST")) {
        zone.summer = scanner.time();
        zone.begin = scanSwitch(scanner);
        zone.end = scanSwitch(scanner);
    }
    return scanner.isAtEnd() ? zone : Zone();
}

}  // namespace veltasim
