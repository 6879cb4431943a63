// A resource of the device: one file each, all of them listed in table.cpp.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <veltasim/request.h>

#include "reply.h"
#include "state.h"
#include "status.h"

namespace veltasim {

struct Call {
    const RequestRecord& request;
    const std::vector<std::string> variables;  // what stood for the "{...}" of the path, from left to right
    State& state;
};

// Called with the state locked.
using Handler = Reply (*)(const Call&);

struct Resource {
    std::string_view method;
    std::string_view path;  // "/VELTA/System/IO/outputs/{id}/trigger"; "{...}" stands for one segment
    Handler handler;        // null: the alert stream
};

struct Route {
    const Resource* resource = nullptr;  // null: there is none
    bool pathKnown = false;              // with another method
    std::vector<std::string> variables;
};

Route findResource(std::string_view method, std::string_view path);

Reply getUserCheck(const Call& call);
Reply getDeviceInfo(const Call& call);
Reply putDeviceInfo(const Call& call);
Reply getAccessControlCapabilities(const Call& call);

}  // namespace veltasim
