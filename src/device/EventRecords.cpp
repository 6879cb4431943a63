#include "device/EventRecords.h"

#include <xpr/text.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <new>

#include "gateway/JsonText.h"

namespace {

constexpr size_t kMaxAccessPayload = 2047;

template <size_t N>
void copyText(char (&field)[N], const std::string& text) {
    XPR_Strncpy(field, N, text.c_str(), N - 1);
}

template <size_t N>
void copyString(char (&field)[N], const Json::Value& value) {
    if (value.isString()) copyText(field, value.asString());
}

// Behind the last "}\r\n". Without one it is index 2, where position arithmetic on "not found" ends up. The search
// goes from line feed to line feed, which is much faster than comparing at every byte of a picture.
size_t startOfPicture(const std::string& message) {
    for (size_t length = message.size(); length >= 3;) {
        const void* const feed = memrchr(message.data(), '\n', length);
        if (feed == nullptr) break;
        length = static_cast<size_t>(static_cast<const char*>(feed) - message.data());
        if (length >= 2 && message.compare(length - 2, 2, "}\r") == 0) return length + 1;
    }
    return 2;
}

int intOr(const Json::Value& value, int otherwise) {
    return value.isInt() ? value.asInt() : otherwise;
}

}  // namespace

namespace velta {

bool fillEventRecord(const Json::Value& alarm, int port, tagEVENT_BASE_INFO& base) {
    std::memset(&base, 0, sizeof base);
    base.size = sizeof base;
    copyString(base.deviceAddress, alarm["ipAddress"]);
    base.devicePort = port;
    base.channel = intOr(alarm["channelID"], 1);
    base.activePostCount = intOr(alarm["activePostCount"], 1);
    const Json::Value& state = alarm["eventState"];
    base.activeState = !state.isString() || state.asString() == "active" ? 1 : 0;
    copyString(base.deviceId, alarm["deviceID"]);
    if (!alarm["dateTime"].isString()) return false;
    copyString(base.dateTime, alarm["dateTime"]);

    if (alarm.isMember("AccessControllerEvent")) {
        base.eventCode = VELTA_EVENT_ACCESS_CONTROL;
        const std::string payload = ",\"AccessControllerEvent\":" + writeJson(alarm["AccessControllerEvent"]);
        XPR_Strncpy(base.payload, sizeof base.payload, payload.c_str(), kMaxAccessPayload);
    } else {
        base.genericAlarm = 1;
        copyText(base.payload, writeJson(alarm));
        copyString(base.description, alarm["eventDescription"]);
    }
    return true;
}

bool announcesPicture(const Json::Value& alarm) {
    const Json::Value& event = alarm["AccessControllerEvent"];
    return event.isObject() && intOr(event["picturesNumber"], 0) > 0;
}

tagEVENT_EXT_INFO* makePictureExtension(const std::string& message) {
    const size_t start = startOfPicture(message);
    const size_t length = message.size() > start ? message.size() - start : 0;

    auto* ext = new (std::nothrow) tagEVENT_EXT_INFO{};
    auto* item = new (std::nothrow) tagEVENT_EXT_ITEM{};
    char* data = new (std::nothrow) char[length + 1];
    if (ext == nullptr || item == nullptr || data == nullptr) {
        delete ext;
        delete item;
        delete[] data;
        return nullptr;
    }
    std::memcpy(data, message.data() + message.size() - length, length);
    data[length] = '\0';
    item->data = data;
    item->length = static_cast<int32_t>(length);
    ext->kind = VELTA_EXT_PICTURE;
    ext->items = item;
    ext->itemCount = 1;
    return ext;
}

void releaseExtension(tagEVENT_EXT_INFO*& ext) {
    if (ext == nullptr) return;
    if (ext->items != nullptr) delete[] ext->items->data;
    delete ext->items;
    delete ext;
    ext = nullptr;
}

}  // namespace velta

void ConvertDevTimeToJsonTime(const std::string& text, int offsetSeconds, tagJsonTime& time) {
    std::tm parts{};
    if (std::sscanf(text.c_str(), "%04d-%02d-%02dT%02d:%02d:%02d.000Z", &parts.tm_year, &parts.tm_mon,
                    &parts.tm_mday, &parts.tm_hour, &parts.tm_min, &parts.tm_sec) != 6) {
        return;
    }
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    parts.tm_isdst = -1;
    const std::time_t moment = std::mktime(&parts) - offsetSeconds;
    std::tm local{};
    if (localtime_r(&moment, &local) == nullptr) return;
    time.second = local.tm_sec;
    time.minute = local.tm_min;
    time.hour = local.tm_hour;
    time.day = local.tm_mday;
    time.month = local.tm_mon + 1;
    time.year = local.tm_year + 1900;
}
