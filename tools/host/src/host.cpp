#include "host.h"

#include <json/value.h>

#include <algorithm>

#include "failure.h"
#include "text.h"

namespace host {
namespace {

constexpr auto kStoredWithin = std::chrono::seconds(5);
constexpr auto kLookAgain = std::chrono::milliseconds(20);

std::string withHostParameter(const std::string& uri) {
    const size_t query = uri.find('?');
    if (query == std::string::npos) return uri + "?devIndex=1";
    const bool has =
        uri.find("?devIndex=") != std::string::npos || uri.find("&devIndex=") != std::string::npos;
    return has ? uri : uri + "&devIndex=1";
}

}  // namespace

Host::Host(const CommonOptions& given)
    : options(given),
      console(given.json ? Console::Format::JsonLines : Console::Format::Text, given.logLevel == "off"),
      trace(given.trace.empty() ? nullptr
                                : std::make_unique<Trace>(given.trace, given.keepInTrace, console)) {}

void Host::loadPlugin() {
    const std::string path = options.library.empty() ? besideProgram("libveltadev.so") : options.library;
    plugin = std::make_unique<Plugin>(path, options.logLevel);
}

Session& Host::add(const DeviceAddress& device) {
    if (trace) trace->follow(device);
    return *sessions.emplace_back(std::make_unique<Session>(*plugin, sessions.size(), device, inbox));
}

void Host::connect(const std::vector<std::string>& devices, const LoginOptions& login) {
    const Credentials credentials = askCredentials(login, waiter);
    std::vector<DeviceAddress> addresses;
    waiter.runAside(
        [&] {
            for (const std::string& device : devices)
                addresses.push_back(resolved(parseDeviceAddress(device)));
        },
        [&] { console.note("Waiting for the name service; Ctrl-C again leaves at once."); });
    waiter.throwIfInterrupted();
    // The plug-in knows which device an event comes from by its address alone.
    for (auto device = addresses.begin(); device != addresses.end(); ++device) {
        const auto isSame = [&](const DeviceAddress& other) { return other.text() == device->text(); };
        if (std::any_of(addresses.begin(), device, isSame))
            throw Failure(ExitCode::WrongUsage, "the device " + device->text() + " is named twice");
    }
    loadPlugin();
    for (const DeviceAddress& device : addresses)
        add(device).connect(credentials);
}

Session& Host::connect(const DeviceOptions& device) {
    connect({device.device}, device.login);
    return *sessions.front();
}

void Host::awaitStored(const Session& session, int status) {
    const auto deadline = Clock::now() + kStoredWithin;
    while (session.status() != status && Clock::now() < deadline && !waiter.interrupted())
        waiter.wait(Clock::now() + kLookAgain);
}

std::string Host::request(const Session& session, const std::string& method, const std::string& uri,
                          const std::string& body) {
    Json::Value envelope;
    envelope["method"] = method;
    envelope["uri"] = withHostParameter(uri);
    envelope["body"] = body;
    const std::string text = prettyJson(envelope);
    std::string answer;
    waiter.runAside([&] { answer = session.request(text); },
                    [&] {
                        console.note(
                            "Waiting for the exchange with the device to end, 15 s at most; "
                            "Ctrl-C again leaves at once.");
                    });
    waiter.throwIfInterrupted();
    return answer;
}

}  // namespace host
