#pragma once

#include <string>

#include <veltasim/device.h>

namespace veltasim {

// Where the device's state is kept between runs.
class StateFile {
 public:
    // No path: nothing is kept.
    explicit StateFile(std::string path) : path_(std::move(path)) {}

    bool isThere() const { return !path_.empty(); }
    const std::string& path() const { return path_; }
    // Does nothing if the file does not exist yet. Throws BadUsage if it is wrong.
    void load(Device& device) const;
    // The old file is whole until the new one is. Throws std::runtime_error.
    void save(const Device& device) const;

 private:
    std::string path_;
};

}  // namespace veltasim
