#pragma once

#include <json/json.h>

#include <mutex>
#include <string>

#include <veltasim/device.h>

#include "program/settings.h"

namespace veltasim {

// Lines from several devices must not mix. A reader of the output sees each line at once.
class Printer {
 public:
    explicit Printer(const Settings& settings) : quiet_(settings.quiet), json_(settings.json) {}

    void device(const Device& device);
    void control(const std::string& url);
    void panel(const std::string& url);
    void request(const RequestRecord& record);
    void message(const std::string& text);

 private:
    void print(const Json::Value& line, const std::string& text);

    const bool quiet_;
    const bool json_;
    std::mutex mutex_;
};

}  // namespace veltasim
