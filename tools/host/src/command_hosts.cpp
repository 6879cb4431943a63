// velta-host hosts: where a device sends its events by itself.

#include <arpa/inet.h>
#include <curl/curl.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "command_group.h"
#include "exchange.h"
#include "listing.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kListFooter = R"(
Examples:
  velta-host hosts list --device 192.168.1.20)";
constexpr const char* kSetFooter = R"(
The table of the device becomes what is given: hosts that are not named are gone. Devices send JSON, and all events unless
--events lists minor kinds.

Examples:
  velta-host hosts set --device 192.168.1.20 1 http://192.168.1.5:8080/events
  velta-host hosts set --device 192.168.1.20 1 http://192.168.1.5:8080/a 2 https://events.example/b --events 0x01,0x4b)";
constexpr const char* kClearFooter = R"(
Examples:
  velta-host hosts clear --device 192.168.1.20)";

constexpr const char* kHosts = "/VELTA/Event/notification/httpHosts";
constexpr const char* kList = "HttpHostNotificationList";
constexpr const char* kHost = "HttpHostNotification";

struct SetOptions : DeviceOptions {
    std::vector<std::string> pairs;  // id, URL, id, URL, ...
    std::string events;
    int heartbeat = 30;
};

std::string urlText(const Json::Value& host) {
    const bool isAddress = member(host, "addressingFormatType") == "ipaddress";
    const std::string scheme = member(host, "protocolType") == "HTTPS" ? "https://" : "http://";
    return scheme + member(host, isAddress ? "ipAddress" : "hostName") + ":" + member(host, "portNo") +
           member(host, "url");
}

constexpr Column kColumns[] = {{"ID", "id"}, {"URL", "", urlText}};

class Url {
 public:
    explicit Url(const std::string& text) : url_(curl_url(), curl_url_cleanup) {
        if (curl_url_set(url_.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK)
            throw Failure(ExitCode::WrongUsage, text + " is no URL", "http://ADDRESS:PORT/PATH is expected");
    }
    std::string part(CURLUPart part, unsigned flags = 0) const {
        char* found = nullptr;
        if (curl_url_get(url_.get(), part, &found, flags) != CURLUE_OK) return "";
        const std::unique_ptr<char, decltype(&curl_free)> owner(found, curl_free);
        return found;
    }

 private:
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url_;
};

Json::Value hostFrom(const std::string& id, const std::string& text, const SetOptions& options) {
    const Url url(text);
    const std::string scheme = url.part(CURLUPART_SCHEME);
    const std::string name = url.part(CURLUPART_HOST);
    const std::string query = url.part(CURLUPART_QUERY);
    if ((scheme != "http" && scheme != "https") || name.starts_with('[') || !url.part(CURLUPART_USER).empty())
        throw Failure(ExitCode::WrongUsage, text + " is no URL that devices send to",
                      "http or https, a name or an IPv4 address, and no user");
    in_addr address{};
    const bool isAddress = inet_pton(AF_INET, name.c_str(), &address) == 1;
    Json::Value json;
    json["id"] = id;
    json["url"] = url.part(CURLUPART_PATH) + (query.empty() ? "" : "?" + query);
    json["protocolType"] = scheme == "https" ? "HTTPS" : "HTTP";
    json["addressingFormatType"] = isAddress ? "ipaddress" : "hostname";
    json[isAddress ? "ipAddress" : "hostName"] = name;
    json["portNo"] = std::stoi(url.part(CURLUPART_PORT, CURLU_DEFAULT_PORT));
    Json::Value& events = json["SubscribeEvent"];
    events["heartbeat"] = options.heartbeat;
    events["eventMode"] = options.events.empty() ? "all" : "list";
    if (!options.events.empty()) events["minorEvent"] = options.events;
    return json;
}

// The plug-in does not tell a device without hosts from one that can't have any.
Json::Value readHosts(const Site& site) {
    try {
        return site.ask("GET", kHosts);
    } catch (const DeviceError& error) {
        if (error.status.name != "notSupport") throw;
        return {};
    }
}

ExitCode listHosts(const Site& site, const DeviceOptions&) {
    const Json::Value answer = readHosts(site);
    const Json::Value list = answer.isObject() ? answer[kList] : Json::Value();
    Json::Value hosts = Json::arrayValue;
    for (const Json::Value& item : list.isArray() ? list : Json::Value(Json::arrayValue))
        hosts.append(item.isObject() ? item[kHost] : Json::Value());
    Listing listing(site, "host", kColumns);
    listing.page(hosts);
    listing.end();
    return ExitCode::Ok;
}

ExitCode setHosts(const Site& site, const SetOptions& options) {
    if (options.pairs.size() % 2 != 0)
        throw Failure(ExitCode::WrongUsage, "\"" + options.pairs.back() + "\" stands alone",
                      "each host is a number and a URL, as in 1 http://192.168.1.5:8080/events");
    Json::Value body;
    for (size_t i = 0; i + 1 < options.pairs.size(); i += 2)
        body[kList].append(Json::objectValue)[kHost] =
            hostFrom(options.pairs[i], options.pairs[i + 1], options);
    try {
        site.ask("PUT", kHosts, body);
    } catch (Failure& failure) {
        if (failure.hint.empty())
            failure.hint = "does the device have room for these IDs? they count from 1 on";
        throw;
    }
    site.report("hosts", counted(body[kList].size(), "host") + " set", body);
    return ExitCode::Ok;
}

ExitCode clearHosts(const Site& site, const DeviceOptions&) {
    site.ask("DELETE", kHosts);
    site.report("hosts", "no hosts any more");
    return ExitCode::Ok;
}

}  // namespace

void addHostsCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CommandGroup group(app, "hosts", "Show and set where a device sends its events by itself", common, run);
    group.add({"list", "List the hosts", kListFooter}, std::make_shared<DeviceOptions>(), listHosts);
    const auto set = std::make_shared<SetOptions>();
    CLI::App& command = group.add({"set", "Replace the hosts", kSetFooter}, set, setHosts);
    addList(command, "ID URL", "", "Number and URL of each host", set->pairs)->required();
    addTexts(command, {{"--events", "LIST", "Only these minor kinds, as in 0x01,0x4b", &set->events}});
    command.add_option("--heartbeat", set->heartbeat, "Seconds between two signs of life")
        ->type_name("SECONDS")
        ->capture_default_str()
        ->check(positiveNumber());
    group.add({"clear", "Remove all hosts", kClearFooter}, std::make_shared<DeviceOptions>(), clearHosts);
}

}  // namespace host
