// An HTTP archive that is complete after each entry: a host that is killed leaves a file that can be opened.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <mutex>
#include <string>

#include "waiter.h"

namespace host {

class HarFile {
 public:
    static constexpr uint64_t kMostBytes = uint64_t{256} << 20U;

    // Makes the file, for its owner's eyes only, or empties it. Throws Failure.
    explicit HarFile(const std::string& path);
    // [any thread]
    void add(const Json::Value& entry);
    std::string problem() const;  // why entries are missing; empty: none are

 private:
    bool write(const std::string& text, const std::string& end);

    const std::string path_;
    const Fd file_;
    mutable std::mutex mutex_;  // guards the rest
    uint64_t size_ = 0;         // without what ends the archive
    bool hasEntries_ = false;
    uint64_t missing_ = 0;
    std::string problem_;
};

}  // namespace host
