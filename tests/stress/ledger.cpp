#include "ledger.h"

#include <velta/velta.h>

#include <atomic>
#include <cstdio>
#include <map>
#include <set>

namespace stress {
namespace {

constexpr auto kRefused = static_cast<uint32_t>(VELTA_REFUSED);

/* What the headers name where it is not VELTA_OK alone. Calls that are made to be refused have names of their own. */
const std::map<std::string, std::set<uint32_t>> kDocumented = {
    {"Init, again", {kRefused}},
    {"Uninit, sessions alive", {kRefused}},
    {"SetEventCallBack", {VELTA_OK, VELTA_E_OFFLINE}},
    {"SetEventCallBack, null", {VELTA_OK, VELTA_E_OFFLINE, kRefused}},
    {"DeviceLoop", {VELTA_OK, VELTA_E_BAD_PARAMETER}},
};

std::atomic<uint64_t> calls{0};
std::atomic<int> found{0};

}  // namespace

uint32_t note(const char* call, int result) {
    const auto code = static_cast<uint32_t>(result);
    ++calls;
    const auto row = kDocumented.find(call);
    if (row == kDocumented.end() ? code != VELTA_OK : !row->second.contains(code)) {
        char text[32];
        std::snprintf(text, sizeof text, ": result 0x%08X", code);
        violation(call + std::string(text));
    }
    return code;
}

uint64_t notedCalls() {
    return calls;
}

void violation(const std::string& what) {
    if (++found <= 50) std::fprintf(stderr, "VIOLATION: %s\n", what.c_str());
}

int violations() {
    return found;
}

}  // namespace stress
