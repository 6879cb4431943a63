#include "access/event_hosts.h"

#include <arpa/inet.h>

#include <cstdlib>
#include <sstream>

#include "access/person_rules.h"
#include "json_values.h"
#include "status.h"

namespace veltasim {
namespace {

constexpr const char* kElement = "HttpHostNotification";

std::string textOf(const pugi::xml_node& node, const char* name) {
    return node.child(name).text().get();
}

std::string hostIn(const pugi::xml_node& node) {
    const std::string addressing = textOf(node, "addressingFormatType");
    if (!isOneOf(addressing, "ipaddress,hostname")) throw Refused(badParameter("addressingFormatType"));
    if (addressing == "hostname") {
        if (textOf(node, "hostName").empty()) throw Refused(badParameter("hostName"));
        return textOf(node, "hostName");
    }
    in_addr ignored{};
    if (inet_pton(AF_INET, textOf(node, "ipAddress").c_str(), &ignored) != 1) throw Refused(kBadIpv4Address);
    return textOf(node, "ipAddress");
}

// "0x01,0x4b"
std::set<int> minorsIn(const std::string& list) {
    std::set<int> minors;
    std::istringstream pieces(list);
    for (std::string piece; std::getline(pieces, piece, ',');)
        minors.insert(static_cast<int>(std::strtol(piece.c_str(), nullptr, 0)));
    return minors;
}

EventHost hostFrom(const pugi::xml_node& node) {
    const std::string protocol = textOf(node, "protocolType");
    if (!isOneOf(protocol, "HTTP,HTTPS")) throw Refused(badParameter("protocolType"));
    const auto port = numbersOf(textOf(node, "portNo"));
    if (port.size() != 1 || port[0] < 1 || port[0] > UINT16_MAX) throw Refused(badParameter("portNo"));
    std::string path = textOf(node, "url");
    if (!path.starts_with('/')) path.insert(0, "/");

    const pugi::xml_node subscription = node.child("SubscribeEvent");
    EventHost host{
        (protocol == "HTTP" ? "http://" : "https://") + hostIn(node) + ":" + std::to_string(port[0]) + path,
        textOf(subscription, "eventMode") != "list",
        {}};
    for (const pugi::xml_node& event : subscription.child("EventList").children("Event")) {
        if (textOf(event, "type") == "AccessControllerEvent")
            host.minors.merge(minorsIn(textOf(event, "minorEvent")));
    }
    return host;
}

}  // namespace

void EventHosts::set(const pugi::xml_node& list, unsigned capacity) {
    std::vector<EventHost> hosts;
    std::set<unsigned> ids;
    pugi::xml_document elements;
    for (const pugi::xml_node& node : list.children(kElement)) {
        const auto id = numbersOf(textOf(node, "id"));
        if (id.size() != 1 || id[0] < 1 || id[0] > capacity || !ids.insert(id[0]).second)
            throw Refused(badParameter("id"));
        hosts.push_back(hostFrom(node));
        elements.append_copy(node);
    }
    hosts_ = std::move(hosts);
    elements_ = std::move(elements);
}

void EventHosts::addElements(pugi::xml_node& list) const {
    for (const pugi::xml_node& node : elements_.children())
        list.append_copy(node);
}

}  // namespace veltasim
