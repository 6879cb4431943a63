#include "story.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>

#include "text.h"

namespace host {
namespace {

constexpr size_t kNameWidth = 28;
constexpr size_t kMaxDetailBeside = 44;  // a longer one stands below
constexpr const char* kIndent = "              ";

std::string secondsText(double seconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%5.1f s", seconds);
    return text.data();
}

std::string padded(std::string text) {
    text.resize(std::max(text.size(), kNameWidth), ' ');
    return text;
}

}  // namespace

double Story::secondsSince(Clock::time_point moment) {
    return std::chrono::duration<double>(Clock::now() - moment).count();
}

void Story::tell(const std::string& text) {
    console_.text(text);
}

void Story::step(const std::string& name, const std::function<std::string()>& act) {
    const auto began = Clock::now();
    std::string detail;
    bool held = true;
    try {
        detail = act();
    } catch (const std::exception& error) {
        waiter_.throwIfInterrupted();
        held = false;
        detail = error.what();
    }
    steps_.push_back({name, held, secondsSince(began)});
    Json::Value json;
    json["type"] = "step";
    json["step"] = name;
    json["ok"] = held;
    json["seconds"] = steps_.back().seconds;
    json["detail"] = detail;
    const std::string head = "[" + secondsText(elapsed()) + "] " + (held ? "" : "FAILED ");
    const bool isBeside = detail.size() <= kMaxDetailBeside;
    console_.result(head + (isBeside ? padded(name) + detail : name + "\n" + kIndent + detail), json);
}

bool Story::sumUp() {
    const bool held = std::all_of(steps_.begin(), steps_.end(), [](const Step& step) { return step.held; });
    tell("\n" + padded("Step") + "Result     Time");
    for (const Step& step : steps_)
        tell(padded(step.name) + (step.held ? "ok    " : "FAILED") + "  " + secondsText(step.seconds));
    Json::Value json;
    json["type"] = "summary";
    json["ok"] = held;
    json["seconds"] = elapsed();
    console_.result(padded(held ? "Every step held" : "Not every step held") + (held ? "ok    " : "FAILED") +
                        "  " + secondsText(elapsed()),
                    json);
    return held;
}

}  // namespace host
