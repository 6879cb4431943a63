#pragma once

#include <chrono>
#include <cstddef>
#include <span>
#include <string_view>

namespace veltasim {

// How much of a request a hostile device reads before it acts.
enum class Ear { Nothing, RequestLine, Head, All };
// What becomes of the connection afterwards.
enum class End { GoOn, Hang, Close, Reset };

struct Manner {
    static constexpr size_t kForEver = 0;

    std::string_view more = {};  // goes out behind the answer again and again
    size_t times = kForEver;
    Ear ear = Ear::All;
    std::string_view answerToLogIn = {};     // instead of the answer, if the request carries credentials
    std::chrono::milliseconds bytePause{0};  // before each byte
};

struct Trick {
    std::string_view name;
    std::string_view meaning;
    std::string_view answer;  // HostileReply fills in its "{...}"
    End end = End::Close;
    Manner manner = {};
};

// The first one is no trick.
std::span<const Trick> allTricks();
// Throws std::invalid_argument.
const Trick& trickNamed(std::string_view name);

}  // namespace veltasim
