#include "control_reply.h"

#include <arpa/inet.h>

#include "control_events.h"
#include "json_text.h"

namespace veltasim {
namespace {

Json::Value obey(const Devices& devices, const RequestRecord& request) {
    const Command* command = findCommand(request.method, request.path());
    if (!command) throw ControlRefused(404, "unknown: " + request.method + " " + request.target);

    Json::Value body = Json::objectValue;
    if (!request.body.empty() && (!parseJson(request.body, body) || !body.isObject()))
        throw ControlRefused(400, "the body is not a JSON object");
    const Order all{devices, body, request.target};
    if (command->forAll && all.text("device").empty()) return command->run(all);
    const Devices one{&deviceNamedBy(devices, request)};
    return command->run({one, body, request.target});
}

// Only an address or "localhost" cannot have been made to lead here by somebody else.
bool isOwnHost(std::string_view host) {
    if (host.starts_with('[')) return true;
    const std::string name(host.substr(0, host.find(':')));
    in_addr ignored{};
    return name == "localhost" || inet_pton(AF_INET, name.c_str(), &ignored) == 1;
}

}  // namespace

Device& deviceNamedBy(const Devices& devices, const RequestRecord& request) {
    return *devices.at(Order{devices, Json::Value::nullSingleton(), request.target}.number("device", 0));
}

Reply controlReply(const Devices& devices, const Exchange& exchange) {
    try {
        return {200, kJsonType, obey(devices, exchange.record).toStyledString()};
    } catch (const ControlRefused& refused) {
        return errorReply(refused.status, refused.what());
    } catch (const std::out_of_range&) {
        return errorReply(400, "no such device");
    } catch (const std::exception& error) {  // a member of the wrong type
        return errorReply(400, error.what());
    }
}

std::optional<Reply> refusalOfStrangers(const RequestRecord& request) {
    const std::string_view host = request.header("Host");
    const std::string_view origin = request.header("Origin");
    if (!isOwnHost(host)) return errorReply(403, "ask for it by its address, or as localhost");
    if (!origin.empty() && origin != "http://" + std::string(host))
        return errorReply(403, "not for pages of other sites");
    return std::nullopt;
}

Reply errorReply(int status, const std::string& what) {
    Json::Value json;
    json["error"] = what;
    return {status, kJsonType, json.toStyledString()};
}

}  // namespace veltasim
