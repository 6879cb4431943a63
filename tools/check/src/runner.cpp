#include "runner.h"

#include <poll.h>
#include <string.h>
#include <sys/wait.h>

#include <algorithm>
#include <deque>
#include <list>
#include <optional>

#include "child.h"
#include "process.h"

namespace check {
namespace {

using Clock = Process::Clock;

constexpr size_t kLastLines = 5;

std::string lastLines(const std::string& text) {
    size_t start = text.size();
    for (size_t lines = 0; start > 0; --start) {
        const bool lineEndsHere = text[start - 1] == '\n';
        if (lineEndsHere && start < text.size() && ++lines == kLastLines) break;
    }
    return text.substr(start);
}

std::string signalName(int signal) {
    const char* const name = sigabbrev_np(signal);
    return name != nullptr ? std::string("SIG") + name : "signal " + std::to_string(signal);
}

// Why a process did not end as it should have.
std::optional<std::string> crashOf(int status, bool isComplete) {
    if (WIFSIGNALED(status)) return "ended by " + signalName(WTERMSIG(status));
    if (!isComplete) return "the process was left with exit code " + std::to_string(WEXITSTATUS(status));
    if (WEXITSTATUS(status) != 0)
        return "exit code " + std::to_string(WEXITSTATUS(status)) + " after the check";
    return std::nullopt;
}

class Run {
 public:
    Run(const std::vector<Check>& checks, const RunOptions& options) : options_(options) {
        for (const Check& check : checks)
            outcomes_.push_back({check});
        // Those that wait come first: the others have the processor while they do.
        for (const Pace pace : {Pace::Waits, Pace::Quick}) {
            for (size_t i = 0; i < checks.size(); ++i) {
                if (checks[i].pace == pace) waiting_.push_back(i);
            }
        }
    }

    std::vector<Outcome> toTheEnd(const std::function<void(size_t)>& onEnd) {
        for (size_t ended = 0; ended < outcomes_.size();) {
            while (!waiting_.empty() && running_.size() < options_.jobs)
                startNext();
            const auto child = waitForOne();
            finish(*child);
            running_.erase(child);
            onEnd(++ended);
        }
        return std::move(outcomes_);
    }

 private:
    struct Child {
        size_t index;
        Process process;
    };

    void startNext() {
        const size_t index = waiting_.front();
        waiting_.pop_front();
        running_.push_back(
            {index, Process({kRunOneOption, outcomes_[index].check.id(), kTimeLimitOption,
                             std::to_string(options_.timeLimit.count()), options_.libraryPath})});
    }

    // The first child that has ended, or whose time is over.
    std::list<Child>::iterator waitForOne() {
        while (true) {
            std::vector<pollfd> ends;
            Clock::time_point deadline = Clock::time_point::max();
            for (const Child& child : running_) {
                ends.push_back({child.process.endFd(), POLLIN, 0});
                deadline = std::min(deadline, child.process.start() + options_.timeLimit);
            }
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            poll(ends.data(), ends.size(),
                 static_cast<int>(std::max<std::chrono::milliseconds::rep>(0, left.count())));
            size_t i = 0;
            for (auto child = running_.begin(); child != running_.end(); ++child, ++i) {
                if (ends[i].revents != 0) return child;
                if (Clock::now() < child->process.start() + options_.timeLimit) continue;
                outcomes_[child->index].ending = Ending::Hung;
                child->process.kill();
                return child;
            }
        }
    }

    void finish(Child& child) {
        Outcome& outcome = outcomes_[child.index];
        const int status = child.process.wait();
        outcome.seconds = std::chrono::duration<double>(Clock::now() - child.process.start()).count();
        ChildReport report = parseReport(child.process.report());
        outcome.findings = std::move(report.findings);
        if (outcome.ending == Ending::Hung) {
            outcome.cause = "did not end in " + std::to_string(options_.timeLimit.count()) + " s";
        } else if (const auto crash = crashOf(status, report.isComplete)) {
            outcome.ending = Ending::Crashed;
            outcome.cause = *crash;
        } else {
            outcome.ending = outcome.findings.empty() ? Ending::Passed : Ending::Failed;
            return;
        }
        outcome.lastWords = lastLines(child.process.output());
    }

    const RunOptions& options_;
    std::vector<Outcome> outcomes_;
    std::deque<size_t> waiting_;  // indices of checks
    std::list<Child> running_;
};

}  // namespace

std::vector<Outcome> runChecks(const std::vector<Check>& checks, const RunOptions& options,
                               const std::function<void(size_t)>& onEnd) {
    return Run(checks, options).toTheEnd(onEnd);
}

std::string loadError(const std::string& libraryPath) {
    Process process({kRunOneOption, kJustLoad, libraryPath});
    const int status = process.wait();
    if (WIFSIGNALED(status)) return "loading it ended by " + signalName(WTERMSIG(status));
    const ChildReport report = parseReport(process.report());
    if (WEXITSTATUS(status) == 0) return "";
    return report.findings.empty() ? "loading it ended the process" : report.findings.front().what;
}

}  // namespace check
