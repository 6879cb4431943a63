#include "event_host.h"

#include <curl/curl.h>
#include <xpr/thread.h>

#include <cstring>
#include <numeric>

#include "fake_device.h"
#include "gateway/JsonText.h"
#include "manager/CVeltaDevMgr.h"

namespace {

constexpr size_t kMaxAccessPayload = 2047;

/* Where an alarm comes from, as events are routed. */
std::string sourceOf(const std::string& message) {
    Json::Value alarm;
    if (!velta::parseJson(message, alarm)) return "";
    const Json::Value& ip = velta::memberOf(alarm, "ipAddress");
    const Json::Value& port = velta::memberOf(alarm, "portNo");
    if (!ip.isString()) return "";
    return ip.asString() + ":" + std::to_string(port.isInt() ? port.asInt() : 80);
}

template <size_t N>
bool isTerminated(const char (&field)[N]) {
    return std::memchr(field, '\0', N) != nullptr;
}

template <size_t N>
bool isZero(const uint8_t (&bytes)[N]) {
    return std::accumulate(bytes, bytes + N, 0) == 0;
}

}  // namespace

namespace fuzz {

EventHost& EventHost::instance() {
    static EventHost host;
    return host;
}

EventHost::EventHost() {
    // As the manager does when it starts: not by the first transfer, on its thread, while the program may end.
    curl_global_init(CURL_GLOBAL_NOTHING);
    CVeltaDevMgr::instance().setEventTransmitCfg(true);
    connect(session_);
    goOnline(session_);
    require(session_.SetEventCallBack(look, nullptr) == VELTA_OK, "an online session can be armed");
    while (!session_.isArmThreadExit())
        XPR_Sleep(1);
}

EventHost::~EventHost() {
    session_.DisConnect();
    curl_global_cleanup();
}

void EventHost::deliver(const std::string& message) {
    CVeltaDevMgr& manager = CVeltaDevMgr::instance();
    const std::string source = sourceOf(message);
    manager.addEventCallBack(source, &session_);
    manager.processAcsAlarm(message);
    manager.delEventCallBack(source);
}

void EventHost::look(void*, char* sourceId, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext, void*) {
    require(std::strncmp(sourceId, "D_", 2) == 0, "an event comes from the device itself");
    require(base->size == sizeof *base, "a record tells its size");
    require(isTerminated(base->payload) && isTerminated(base->dateTime) && isTerminated(base->description) &&
                isTerminated(base->deviceAddress) && isTerminated(base->deviceId),
            "the texts of a record are terminated");
    require(isZero(base->reserved1) && isZero(base->reserved2) && isZero(base->reserved3) &&
                isZero(base->reserved4) && isZero(base->reserved5),
            "the unused bytes of a record are zero");
    const bool isAccess = base->eventCode == VELTA_EVENT_ACCESS_CONTROL;
    require(base->genericAlarm == (isAccess ? 0 : 1), "an event is of one kind");
    require(!isAccess || std::strlen(base->payload) <= kMaxAccessPayload, "an access event has its limit");
    if (ext == nullptr) return;
    require(isAccess && ext->kind == VELTA_EXT_PICTURE && ext->itemCount == 1, "an extension is a picture");
    const tagEVENT_EXT_ITEM& picture = ext->items[0];
    require(picture.length >= 0 && picture.data[picture.length] == '\0', "a picture is followed by a zero");
    const std::string copy(picture.data, static_cast<size_t>(picture.length));  // all of it is there
    require(copy.size() == static_cast<size_t>(picture.length), "a picture has its length");
}

}  // namespace fuzz
