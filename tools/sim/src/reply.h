#pragma once

#include <string>

namespace veltasim {

struct Reply {
    int status = 200;
    std::string contentType;
    std::string body;
    bool thenReboot = false;  // as soon as the answer has gone out
};

}  // namespace veltasim
