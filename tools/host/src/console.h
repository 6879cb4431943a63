// Standard output for results, standard error for everything else.
#pragma once

#include <json/value.h>

#include <string>

#include "waiter.h"

namespace host {

class Console {
 public:
    enum class Format { Text, JsonLines };

    // mayAnimate: nothing else writes to standard error while a progress line stands there.
    Console(Format format, bool mayAnimate);
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    bool isJson() const { return format_ == Format::JsonLines; }

    // One result in the format that was asked for. Throws Failure when standard output can't be written any
    // more.
    void result(const std::string& text, const Json::Value& json);
    void text(const std::string& text);  // in Text format only
    void raw(const std::string& bytes);  // as it stands, without a line feed
    void note(const std::string& text);

    // A wait: on a terminal a line that counts down, elsewhere one line when it begins.
    void countdown(const std::string& what, Clock::time_point until);
    // How far something has come: on a terminal only, until anything else is written or the line is ended.
    void progress(const std::string& line);
    void endCountdown();

 private:
    void write(const std::string& bytes);

    const Format format_;
    const bool animates_;
    std::string announced_;  // the wait that is going on
    std::string standing_;   // the progress line on the terminal
};

}  // namespace host
