#include "figures.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace bench {

namespace {

/* Three significant digits. */
std::string number(double value) {
    if (value == 0) return "0";
    char text[32];
    const int decimals = value >= 100 ? 0 : value >= 10 ? 1 : value >= 1 ? 2 : 3;
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string spread(const Samples& samples) {
    if (samples.values.empty()) return "";
    if (samples.values.size() == 1) return number(samples.median());
    return number(samples.median()) + " (" + number(samples.quantile(0.25)) + " to " +
           number(samples.quantile(0.75)) + ")";
}

struct Cells {
    std::string what, unit, ours, limit, ratio, target, verdict;
};

Cells cellsOf(const Row& row) {
    Cells cells{row.what, row.unit, spread(row.ours), spread(row.limit), "", "", ""};
    if (!row.limit.values.empty()) cells.ratio = number(row.ratio());
    if (row.target) {
        cells.target = (row.atLeast ? "at least " : "at most ") + number(*row.target);
        cells.verdict = row.kept() ? "kept" : "missed";
    }
    return cells;
}

}  // namespace

double Samples::quantile(double part) const {
    if (values.empty()) return 0;
    std::vector<double> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    return sorted[std::min(sorted.size() - 1,
                           static_cast<size_t>(part * static_cast<double>(sorted.size())))];
}

void takeTurns(int times, Samples& ours, const std::function<double()>& runOurs, Samples& limit,
               const std::function<double()>& runLimit) {
    for (int i = 0; i < times; ++i) {
        const double first = i % 2 == 0 ? runOurs() : runLimit();
        const double second = i % 2 == 0 ? runLimit() : runOurs();
        ours.values.push_back(i % 2 == 0 ? first : second);
        limit.values.push_back(i % 2 == 0 ? second : first);
    }
}

void printTable(const Rows& rows) {
    constexpr const char* kFormat = "%-58s %-7s %-25s %-25s %6s  %-14s %s\n";
    std::printf(kFormat, "", "unit", "plug-in", "limit", "ratio", "target", "");
    for (const Row& row : rows) {
        const Cells c = cellsOf(row);
        std::printf(kFormat, c.what.c_str(), c.unit.c_str(), c.ours.c_str(), c.limit.c_str(), c.ratio.c_str(),
                    c.target.c_str(), c.verdict.c_str());
    }
}

void printMarkdown(const Rows& rows) {
    std::printf("| what | unit | plug-in | limit | ratio | target | |\n|---|---|---|---|---|---|---|\n");
    for (const Row& row : rows) {
        const Cells c = cellsOf(row);
        std::printf("| %s | %s | %s | %s | %s | %s | %s |\n", c.what.c_str(), c.unit.c_str(), c.ours.c_str(),
                    c.limit.c_str(), c.ratio.c_str(), c.target.c_str(), c.verdict.c_str());
    }
}

void progress(const std::string& what) {
    std::fprintf(stderr, "%s ...\n", what.c_str());
}

}  // namespace bench
