#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <veltasim/device.h>

#include "program/state_file.h"

namespace veltasim {

// Obeys commands of standard input, a line each, on one device.
class Console {
 public:
    using Say = std::function<void(const std::string&)>;

    Console(Device& device, const StateFile& stateFile, Say say)
        : device_(device), stateFile_(stateFile), say_(std::move(say)) {}

    // Takes what standard input has, without waiting for more. False: it has ended.
    bool read();
    void obey(const std::string& line);

 private:
    Device& device_;
    const StateFile& stateFile_;
    const Say say_;
    std::string pending_;  // the line that has not ended yet
};

}  // namespace veltasim
