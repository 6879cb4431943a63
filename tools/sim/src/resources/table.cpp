#include <array>

#include "resources/resource.h"

namespace veltasim {
namespace {

constexpr std::array kResources{
    Resource{"GET", "/VELTA/Security/userCheck", getUserCheck},
    Resource{"GET", "/VELTA/System/deviceInfo", getDeviceInfo},
    Resource{"PUT", "/VELTA/System/deviceInfo", putDeviceInfo},
    Resource{"PUT", "/VELTA/System/reboot", putReboot},
    Resource{"GET", "/VELTA/System/time", getTime},
    Resource{"PUT", "/VELTA/System/time", putTime},
    Resource{"GET", "/VELTA/System/time/timeZone", getTimeZone},
    Resource{"PUT", "/VELTA/System/time/timeZone", putTimeZone},
    Resource{"GET", "/VELTA/System/Video/inputs/channels", getVideoInputs},
    Resource{"GET", "/VELTA/System/Audio/channels", getAudioChannels},
    Resource{"GET", "/VELTA/System/IO/inputs", getIoInputs},
    Resource{"GET", "/VELTA/System/IO/outputs", getIoOutputs},
    Resource{"GET", "/VELTA/System/IO/outputs/{id}/status", getIoOutputStatus},
    Resource{"PUT", "/VELTA/System/IO/outputs/{id}/trigger", putIoOutputTrigger},
    Resource{"GET", "/VELTA/System/Network/interfaces", getNetworkInterfaces},
    Resource{"GET", "/VELTA/System/Network/interfaces/{id}", getNetworkInterface},
    Resource{"PUT", "/VELTA/System/Network/interfaces/{id}", putNetworkInterface},
    Resource{"GET", "/VELTA/System/Network/interfaces/{id}/ipAddress", getIpAddress},
    Resource{"PUT", "/VELTA/System/Network/interfaces/{id}/ipAddress", putIpAddress},
    Resource{"GET", "/VELTA/ContentMgmt/InputProxy/channels", getProxyChannels},
    Resource{"GET", "/VELTA/ContentMgmt/InputProxy/channels/status", getProxyStatus},
    Resource{"GET", "/VELTA/Event/notification/alertStream", nullptr},
};

std::string_view cutSegment(std::string_view& path) {
    const size_t end = std::min(path.find('/'), path.size());
    const std::string_view segment = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    return segment;
}

bool matches(std::string_view pattern, std::string_view path, std::vector<std::string>& variables) {
    while (!pattern.empty() && !path.empty()) {
        const std::string_view expected = cutSegment(pattern);
        const std::string_view segment = cutSegment(path);
        if (expected.starts_with('{'))
            variables.emplace_back(segment);
        else if (expected != segment)
            return false;
    }
    return pattern.empty() && path.empty();
}

}  // namespace

Route findResource(std::string_view method, std::string_view path) {
    Route route;
    for (const std::span<const Resource> resources :
         {std::span<const Resource>(kResources), accessResources()}) {
        for (const Resource& resource : resources) {
            std::vector<std::string> variables;
            if (!matches(resource.path, path, variables)) continue;
            route.pathKnown = true;
            if (resource.method != method) continue;
            route.resource = &resource;
            route.variables = std::move(variables);
            return route;
        }
    }
    return route;
}

}  // namespace veltasim
