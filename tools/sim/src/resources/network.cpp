#include "resources/network.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>

#include "resources/resource.h"
#include "xml.h"

namespace veltasim {
namespace {

constexpr const char* kRoot = "NetworkInterface";
constexpr const char* kIpAddress = "IPAddress";
constexpr int kDeepest = 3;  // no element of the resource is nested deeper

struct AddressElement {
    const char* path;  // below IPAddress
    bool mayBeEmpty;
};

constexpr std::array kAddresses{
    AddressElement{"ipAddress", false},
    AddressElement{"DefaultGateway/ipAddress", true},
    AddressElement{"PrimaryDNS/ipAddress", true},
    AddressElement{"SecondaryDNS/ipAddress", true},
};

bool isIpv4(const char* text) {
    in_addr ignored{};
    return inet_pton(AF_INET, text, &ignored) == 1;
}

bool addressesAreGood(const pugi::xml_node& ipAddress) {
    return std::all_of(kAddresses.begin(), kAddresses.end(), [&](const AddressElement& element) {
        const pugi::xml_node node = ipAddress.first_element_by_path(element.path);
        const pugi::xml_text text = node.text();
        return !node || isIpv4(text.get()) || (element.mayBeEmpty && text.empty());
    });
}

bool hasElements(const pugi::xml_node& node) {
    return node.first_child().type() == pugi::node_element;
}

// Takes over what the request names; the rest stays. What is nested too deep is dropped.
void replaceNamed(pugi::xml_node kept, const pugi::xml_node& named, int levels = kDeepest) {
    for (const pugi::xml_node& element : named.children()) {
        if (element.type() != pugi::node_element) continue;
        pugi::xml_node same = kept.child(element.name());
        if (!same) same = kept.append_child(element.name());
        if (hasElements(element) && levels > 0)
            replaceNamed(same, element, levels - 1);
        else if (!hasElements(element) && !hasElements(same))
            same.text() = element.text().get();
    }
}

void addChildren(pugi::xml_node to, const pugi::xml_node& from) {
    for (const pugi::xml_node& child : from.children())
        to.append_copy(child);
}

Reply documentOf(const char* rootName, const pugi::xml_node& node) {
    pugi::xml_document document;
    addChildren(addRoot(document, rootName), node);
    return {200, kXmlType, toText(document)};
}

// The interface that the path names; null if there is none.
pugi::xml_node interfaceOf(const Call& call) {
    std::vector<pugi::xml_document>& all = call.state.networkInterfaces;
    const auto index = indexIn(call, all.size());
    return index ? all[*index].document_element() : pugi::xml_node();
}

}  // namespace

pugi::xml_document firstNetworkInterface(unsigned id, const std::string& macAddress) {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(kRoot);
    const std::string network = "192.0." + std::to_string(id + 1) + ".";
    addText(root, "id", std::to_string(id));
    pugi::xml_node address = root.append_child(kIpAddress);
    addText(address, "ipVersion", "v4");
    addText(address, "addressingType", "static");
    addText(address, "ipAddress", network + "64");
    addText(address, "subnetMask", "255.255.255.0");
    pugi::xml_node gateway = address.append_child("DefaultGateway");
    addText(gateway, "ipAddress", network + "1");
    pugi::xml_node nameServer = address.append_child("PrimaryDNS");
    addText(nameServer, "ipAddress", network + "53");
    pugi::xml_node link = root.append_child("Link");
    addText(link, "MACAddress", macAddress);
    addText(link, "negotiation", "true");
    addText(link, "speed", "100");
    addText(link, "duplex", "full");
    addText(link, "MTU", "1500");
    return document;
}

Reply getNetworkInterfaces(const Call& call) {
    if (!call.state.inventory.networkInterfaces) return notFound(call);
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, "NetworkInterfaceList");
    for (const pugi::xml_document& one : call.state.networkInterfaces)
        root.append_copy(one.document_element());
    return {200, kXmlType, toText(document)};
}

Reply getNetworkInterface(const Call& call) {
    const pugi::xml_node kept = interfaceOf(call);
    return kept ? documentOf(kRoot, kept) : notFound(call);
}

Reply putNetworkInterface(const Call& call) {
    const pugi::xml_node kept = interfaceOf(call);
    if (!kept) return notFound(call);
    pugi::xml_document document;
    if (auto refusal = readDocument(call, kRoot, document)) return *refusal;
    const pugi::xml_node named = document.document_element();
    const pugi::xml_node id = named.child("id");
    if (id && id.text().get() != std::string_view(kept.child("id").text().get()))
        return refused(call, badParameter("id"));
    if (!addressesAreGood(named.child(kIpAddress))) return refused(call, kBadIpv4Address);
    replaceNamed(kept, named);
    return done(call);
}

Reply getIpAddress(const Call& call) {
    const pugi::xml_node kept = interfaceOf(call);
    return kept ? documentOf(kIpAddress, kept.child(kIpAddress)) : notFound(call);
}

Reply putIpAddress(const Call& call) {
    const pugi::xml_node kept = interfaceOf(call);
    if (!kept) return notFound(call);
    pugi::xml_document document;
    if (auto refusal = readDocument(call, kIpAddress, document)) return *refusal;
    if (!addressesAreGood(document.document_element())) return refused(call, kBadIpv4Address);
    replaceNamed(kept.child(kIpAddress), document.document_element());
    return done(call);
}

}  // namespace veltasim
