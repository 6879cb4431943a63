#pragma once

#include <string>

namespace veltasim {

struct Reply {
    int status = 200;
    std::string contentType;
    std::string body;
};

}  // namespace veltasim
