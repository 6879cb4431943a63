#include <arpa/inet.h>
#include <errno.h>
#include <ifaddrs.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <string.h>
#include <xpr/adapter.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "failure.h"

using xpr::fail;

namespace {

/* A new zeroed element at the end of a list, or null. */
template <typename Element>
Element* append(Element** first) {
    while (*first != nullptr)
        first = &(*first)->next;
    *first = static_cast<Element*>(calloc(1, sizeof(Element)));
    return *first;
}

template <typename Element>
void freeList(Element* first) {
    while (first != nullptr)
        free(std::exchange(first, first->next));
}

/* The list's adapter of that name, new if need be; null when there is no memory for it. */
XPR_Adapter* adapterNamed(XPR_Adapter** first, std::string_view name) {
    for (XPR_Adapter* adapter = *first; adapter != nullptr; adapter = adapter->next) {
        if (name == adapter->name) return adapter;
    }
    XPR_Adapter* added = append(first);
    if (added != nullptr) name.copy(added->name, sizeof added->name - 1);
    return added;
}

bool addHardwareAddress(XPR_Adapter* adapter, const sockaddr* address) {
    const auto* link = reinterpret_cast<const sockaddr_ll*>(address);
    adapter->hardwareAddressLength = std::min<uint32_t>(link->sll_halen, sizeof adapter->hardwareAddress);
    memcpy(adapter->hardwareAddress, link->sll_addr, adapter->hardwareAddressLength);
    return true;
}

bool addIPv4(XPR_Adapter* adapter, const sockaddr* address) {
    XPR_IPv4Address* added = append(&adapter->ipv4);
    if (added == nullptr) return false;
    const in_addr& bytes = reinterpret_cast<const sockaddr_in*>(address)->sin_addr;
    return inet_ntop(AF_INET, &bytes, added->text, sizeof added->text) != nullptr;
}

bool addIPv6(XPR_Adapter* adapter, const sockaddr* address) {
    XPR_IPv6Address* added = append(&adapter->ipv6);
    if (added == nullptr) return false;
    memcpy(added->bytes, &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr, sizeof added->bytes);
    return true;
}

/* False when memory ran out. */
bool addEntry(XPR_Adapter** first, const ifaddrs& entry) {
    // Further addresses of an adapter may carry a label of their own, as in "eth0:1".
    const std::string_view label = entry.ifa_name;
    XPR_Adapter* adapter = adapterNamed(first, label.substr(0, label.find(':')));
    if (adapter == nullptr) return false;
    if (entry.ifa_addr == nullptr) return true;
    switch (entry.ifa_addr->sa_family) {
        case AF_PACKET:
            return addHardwareAddress(adapter, entry.ifa_addr);
        case AF_INET:
            return addIPv4(adapter, entry.ifa_addr);
        case AF_INET6:
            return addIPv6(adapter, entry.ifa_addr);
        default:
            return true;
    }
}

}  // namespace

int XPR_GetAdapterInfo(XPR_Adapter** first) {
    if (first == nullptr) return fail(XPR_ERROR_PARAMETER);
    ifaddrs* entries = nullptr;
    if (getifaddrs(&entries) != 0) return fail(XPR_FAILED, errno);
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(entries, freeifaddrs);

    XPR_Adapter* list = nullptr;
    for (const ifaddrs* entry = entries; entry != nullptr; entry = entry->ifa_next) {
        if ((entry->ifa_flags & IFF_UP) == 0 || addEntry(&list, *entry)) continue;
        XPR_FreeAdapterInfo(list);
        return fail(XPR_ERROR_OUT_OF_MEMORY);
    }
    *first = list;
    return XPR_OK;
}

void XPR_FreeAdapterInfo(XPR_Adapter* first) {
    for (XPR_Adapter* adapter = first; adapter != nullptr; adapter = adapter->next) {
        freeList(adapter->ipv4);
        freeList(adapter->ipv6);
    }
    freeList(first);
}
