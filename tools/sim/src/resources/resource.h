// A resource of the device: one file each, all of them listed in table.cpp and access_table.cpp.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <span>
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

// Called with the state locked. May throw Refused; JSON of the wrong type is refused too.
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
std::span<const Resource> accessResources();  // those of the access controller

Reply done(const Call& call);
Reply notFound(const Call& call);
Reply refused(const Call& call, const Status& why);
// Reads the document of the request. The answer if it is none with such a root element.
std::optional<Reply> readDocument(const Call& call, const char* root, pugi::xml_document& document);
// Which of so many the variable of the path means, counted from 0; nothing: none of them.
std::optional<size_t> indexIn(const Call& call, size_t count);

Reply getUserCheck(const Call& call);
Reply getDeviceInfo(const Call& call);
Reply putDeviceInfo(const Call& call);
Reply putReboot(const Call& call);
Reply getTime(const Call& call);
Reply putTime(const Call& call);
Reply getTimeZone(const Call& call);
Reply putTimeZone(const Call& call);
Reply getVideoInputs(const Call& call);
Reply getProxyChannels(const Call& call);
Reply getProxyStatus(const Call& call);
Reply getAudioChannels(const Call& call);
Reply getIoInputs(const Call& call);
Reply getIoOutputs(const Call& call);
Reply getIoOutputStatus(const Call& call);
Reply putIoOutputTrigger(const Call& call);
Reply getNetworkInterfaces(const Call& call);
Reply getNetworkInterface(const Call& call);
Reply putNetworkInterface(const Call& call);
Reply getIpAddress(const Call& call);
Reply putIpAddress(const Call& call);

}  // namespace veltasim
