// Rows of the table: a figure of the plug-in beside its limit, both measured in the same run.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace bench {

/* What was measured again and again. */
struct Samples {
    std::vector<double> values;

    double quantile(double part) const;
    double median() const { return quantile(0.5); }
};

struct Row {
    std::string what;
    std::string unit;
    Samples ours;
    Samples limit;                /* empty: the figure stands alone */
    std::optional<double> target; /* the greatest ratio to the limit, or the greatest figure without one */
    bool atLeast = false;         /* the target is the least figure of the plug-in, limit or not */

    double ratio() const { return limit.values.empty() ? 0 : ours.median() / limit.median(); }
    /* Only with a target. */
    bool kept() const {
        if (atLeast) return ours.median() >= *target;
        return (limit.values.empty() ? ours.median() : ratio()) <= *target;
    }
};

using Rows = std::vector<Row>;

/* Runs both again and again by turns, so that whatever else the machine does meets both alike. Each returns what it
 * measured of itself. */
void takeTurns(int times, Samples& ours, const std::function<double()>& runOurs, Samples& limit,
               const std::function<double()>& runLimit);

void printTable(const Rows& rows);
/* The same as Markdown. */
void printMarkdown(const Rows& rows);

/* One line about what is being measured, on the standard error output. */
void progress(const std::string& what);

}  // namespace bench
