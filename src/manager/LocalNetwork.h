/* The host machine's own network addresses. */
#ifndef VELTA_MANAGER_LOCALNETWORK_H
#define VELTA_MANAGER_LOCALNETWORK_H

#include <xpr/mutex.h>

#include <cstdint>
#include <string>
#include <vector>

/* One address with the hardware address of its adapter. */
struct tagNetworkEntry {
    uint8_t hardwareAddress[7];
    uint8_t valid;       /* 1 for a filled entry */
    uint8_t address[16]; /* IPv4: dotted text, zero-terminated; IPv6: network order */
};

/* The addresses of the machine, loopback left out. Unused entries are zero. */
struct tagNetworkInfo {
    uint8_t reserved;
    uint8_t ipv4Count; /* 0 to 16 */
    uint8_t ipv6Count; /* 0 to 16 */
    tagNetworkEntry ipv4[16];
    tagNetworkEntry ipv6[16];
    uint8_t trailing[5];
};
static_assert(sizeof(tagNetworkEntry) == 24);
static_assert(sizeof(tagNetworkInfo) == 776);

struct XPR_Adapter;

namespace velta {

/* A cache of the machine's addresses. Any thread. */
class LocalNetwork {
 public:
    /* refresh false: copies the cache to info, returns 1.
     * refresh true: reads the adapters anew, at most once in two minutes, and copies the cache. Returns 1,
     * and leaves info untouched when the last refresh is younger than that; 0, with info untouched, when the
     * adapters can't be read or have no address. A refresh that failed counts as one. */
    int getCurrentNetworkInfo(tagNetworkInfo& info, bool refresh) XPR_EXCLUDES(mutex_);

    /* What a refresh makes of a list of adapters; for tests. */
    static tagNetworkInfo collect(const XPR_Adapter* adapters);

 private:
    xpr::xpr_mutex mutex_;
    tagNetworkInfo cache_ XPR_GUARDED_BY(mutex_) = {};
    int64_t lastRefresh_ XPR_GUARDED_BY(mutex_) = 0; /* XPR_TimeNow; 0: never */
};

}  // namespace velta

/* The parts of text between occurrences of sep. After an occurrence the next part starts one character behind
 * its first, whatever the length of sep. An empty text has one empty part. */
std::vector<std::string> StringSplit(const std::string& text, const std::string& sep);

/* Whether text is four parts between dots, none longer than 3 characters nor above 255. Parts without digits
 * count as 0, so that "1..2.3" passes. */
bool VX_BASE_ParseIp4(const std::string& text);

#endif
