// A request as the device received it, and what became of it.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace veltasim {

struct RequestRecord {
    uint64_t number = 0;  // 1, 2, 3, ... over the life of the device
    uint16_t devicePort = 0;
    std::string method;
    std::string target;  // path and query exactly as received
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;                       // the first Options::maxRecordedBody bytes
    std::string answer = {};                // the first Options::maxRecordedAnswer bytes of its body
    int status = 0;                         // 0: a fault left it without an answer
    std::string user;                       // who sent it; empty: it carried no credentials
    std::chrono::microseconds duration{0};  // from the request's header to the answer being ready

    std::string_view path() const { return std::string_view(target).substr(0, target.find('?')); }
    // Value of the first header of that name (in any case); empty: there is none.
    std::string_view header(std::string_view name) const;
};

}  // namespace veltasim
