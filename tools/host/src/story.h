// A sequence of steps that is told while it happens, and summed up at the end.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "console.h"
#include "waiter.h"

namespace host {

class Story {
 public:
    Story(Console& console, const Waiter& waiter) : console_(console), waiter_(waiter) {}

    void tell(const std::string& text);
    // act returns what was seen; the step fails when it throws. Throws Failure when interrupted.
    void step(const std::string& name, const std::function<std::string()>& act);
    // Prints the table; true when every step held.
    bool sumUp();

 private:
    struct Step {
        std::string name;
        bool held;
        double seconds;
    };
    double elapsed() const { return secondsSince(began_); }
    static double secondsSince(Clock::time_point moment);

    Console& console_;
    const Waiter& waiter_;
    const Clock::time_point began_ = Clock::now();
    std::vector<Step> steps_;
};

}  // namespace host
