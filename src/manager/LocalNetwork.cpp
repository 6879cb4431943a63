#include "manager/LocalNetwork.h"

#include <netinet/in.h>
#include <xlog/xlog.h>
#include <xpr/xpr.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>

namespace {

constexpr int64_t kRefreshIntervalUs = 120'000'000;

void fillHardwareAddress(tagNetworkEntry& entry, const XPR_Adapter& adapter) {
    const size_t length = std::min<size_t>(adapter.hardwareAddressLength, sizeof entry.hardwareAddress);
    std::memcpy(entry.hardwareAddress, adapter.hardwareAddress, length);
    entry.valid = 1;
}

bool isUsable(const XPR_IPv4Address& address) {
    return XPR_Strcmp(address.text, "127.0.0.1") != 0 && XPR_Strcmp(address.text, "0.0.0.0") != 0 &&
           VX_BASE_ParseIp4(address.text);
}

bool isUsable(const XPR_IPv6Address& address) {
    return std::memcmp(address.bytes, &in6addr_loopback, sizeof address.bytes) != 0;
}

void copyAddress(tagNetworkEntry& entry, const XPR_IPv4Address& address) {
    std::memcpy(entry.address, address.text, sizeof entry.address);
}

void copyAddress(tagNetworkEntry& entry, const XPR_IPv6Address& address) {
    std::memcpy(entry.address, address.bytes, sizeof entry.address);
}

// Fills entries with the usable addresses of one family, in the order of the adapters. Returns their number.
template <class Address, size_t N>
uint8_t collectFamily(const XPR_Adapter* adapters, Address* XPR_Adapter::*addresses,
                      tagNetworkEntry (&entries)[N]) {
    uint8_t count = 0;
    for (const XPR_Adapter* adapter = adapters; adapter != nullptr; adapter = adapter->next) {
        for (const Address* address = adapter->*addresses; address != nullptr; address = address->next) {
            if (count == N) return count;
            if (!isUsable(*address)) continue;
            copyAddress(entries[count], *address);
            fillHardwareAddress(entries[count], *adapter);
            ++count;
        }
    }
    return count;
}

}  // namespace

namespace velta {

tagNetworkInfo LocalNetwork::collect(const XPR_Adapter* adapters) {
    tagNetworkInfo info{};
    info.ipv4Count = collectFamily(adapters, &XPR_Adapter::ipv4, info.ipv4);
    info.ipv6Count = collectFamily(adapters, &XPR_Adapter::ipv6, info.ipv6);
    return info;
}

int LocalNetwork::getCurrentNetworkInfo(tagNetworkInfo& info, bool refresh) {
    const XPR_Guard guard(mutex_);
    if (!refresh) {
        info = cache_;
        return 1;
    }
    const int64_t now = XPR_TimeNow();
    if (now - lastRefresh_ < kRefreshIntervalUs) return 1;
    lastRefresh_ = now;

    XPR_Adapter* adapters = nullptr;
    if (XPR_GetAdapterInfo(&adapters) != XPR_OK) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] XPR_GetAdapterInfo failed[%d]", __func__, __LINE__,
                    XPR_GetSystemLastError());
        return 0;
    }
    const std::unique_ptr<XPR_Adapter, decltype(&XPR_FreeAdapterInfo)> owner(adapters, XPR_FreeAdapterInfo);
    cache_ = collect(adapters);
    for (int i = 0; i < cache_.ipv4Count; ++i) {
        xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] GetLocalIP IPv4 No.%d [%s]", __func__, __LINE__, i,
                    reinterpret_cast<const char*>(cache_.ipv4[i].address));
    }
    if (cache_.ipv4Count == 0) {
        xlog_format(XLOG_WARNING, "VELTADEV", "[%s(%d)] GetLocalIP failed to retrieve valid ip address",
                    __func__, __LINE__);
    }
    if (cache_.ipv4Count == 0 && cache_.ipv6Count == 0) return 0;
    info = cache_;
    return 1;
}

}  // namespace velta

std::vector<std::string> StringSplit(const std::string& text, const std::string& sep) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t at = text.find(sep); at != std::string::npos && !sep.empty(); at = text.find(sep, start)) {
        parts.push_back(text.substr(start, at - start));
        start = at + 1;
    }
    parts.push_back(text.substr(start));
    return parts;
}

bool VX_BASE_ParseIp4(const std::string& text) {
    const std::vector<std::string> parts = StringSplit(text, ".");
    return parts.size() == 4 && std::all_of(parts.begin(), parts.end(), [](const std::string& part) {
               return part.size() <= 3 && XPR_Atoi32(part.c_str()) <= 255;
           });
}
