// What a device is and which channels it has.

#include <xlog/xlog.h>
#include <xpr/text.h>

#include <map>

#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"
#include "gateway/JsonText.h"
#include "manager/CVeltaDevMgr.h"

namespace {

constexpr const char* kOutputs = "/VELTA/System/IO/outputs";
constexpr const char* kProxies = "/VELTA/ContentMgmt/InputProxy/channels";
constexpr int32_t kMalformed = static_cast<int32_t>(VELTA_E_BAD_PARAMETER);

/* One element of a channel list. */
class Channel {
 public:
    Channel(CXmlBase& xml, int index) : xml_(xml), index_(index) {}

    /* The text of a child; empty when it has none. */
    std::string text(const char* child) const {
        if (!xml_.IntoElem()) return "";
        std::string text = xml_.FindElem(child) ? xml_.GetData() : "";
        xml_.OutOfElem();
        return text;
    }
    int number() const { return XPR_Atoi32(text("id").c_str()); }
    int index() const { return index_; }

 private:
    CXmlBase& xml_;
    int index_;
};

/* Calls visit(channel) for each child of the root with that name. False when there is no root. */
template <class Visit>
bool forEachChannel(const std::string& document, const char* element, Visit visit) {
    CXmlBase xml;
    xml.Parse(document.c_str());
    if (!xml.SetRoot()) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] xml root get failed", __func__, __LINE__);
        return false;
    }
    int index = 0;
    for (bool found = xml.IntoElem(); found; found = xml.NextSibElem()) {
        if (xml.GetNodeName() == element) visit(Channel(xml, index++));
    }
    return true;
}

using Statuses = std::map<std::string, std::string>;

/* One list of the inventory: where it comes from, and what becomes of its elements. */
struct List {
    const char* path;
    const char* element;
    const char* key; /* of the host's JSON; null: the list only tells the status of the proxies */
    const char* type;
    void (*describe)(const Channel& channel, const Statuses& proxies, Json::Value& described);
};

void nameAndState(const Channel& channel, const Statuses&, Json::Value& described) {
    described["channelName"] = channel.text("name");
    described["channelStatus"] = channel.text("enable");
}

void nameAndProxyState(const Channel& channel, const Statuses& proxies, Json::Value& described) {
    described["channelName"] = channel.text("name");
    const auto status = proxies.find(channel.text("id"));
    if (status != proxies.end()) described["channelStatus"] = status->second;
}

void numberOnly(const Channel&, const Statuses&, Json::Value&) {}

// Inputs are named by their position, outputs by their id.
void inputName(const Channel& channel, const Statuses&, Json::Value& described) {
    described["channelName"] = "AlarmInChan_" + std::to_string(channel.index());
}

void outputName(const Channel& channel, const Statuses&, Json::Value& described) {
    described["channelName"] = "AlarmOutChan_" + std::to_string(channel.number());
}

constexpr List kLists[] = {
    {"/VELTA/System/Video/inputs/channels", "VideoInputChannel", "videoChannels", "analog", nameAndState},
    {"/VELTA/ContentMgmt/InputProxy/channels/status", "InputProxyChannelStatus", nullptr, nullptr, nullptr},
    {kProxies, "InputProxyChannel", "videoChannels", "digital", nameAndProxyState},
    {"/VELTA/System/Audio/channels", "AudioChannel", "audioChannels", "analog", numberOnly},
    {"/VELTA/System/IO/inputs", "IOInputPort", "alarmInChannels", "analog", inputName},
    {kOutputs, "IOOutputPort", "alarmOutChannels", "analog", outputName},
};

}  // namespace

int32_t CVeltaDevice::getDeviceInfo(VeltaDeviceInfo& info) {
    std::string document;
    if (sendHttpReqToDevice(document, "/VELTA/System/deviceInfo", "", kGet, "") != 0)
        return kTransportFailure;
    CXmlBase xml;
    xml.Parse(document.c_str());
    if (!xml.SetRoot()) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] xml root get failed", __func__, __LINE__);
        return kMalformed;
    }
    std::string released;
    struct Field {
        const char* element;
        std::string* text;
    };
    const Field fields[] = {{"model", &info.model},
                            {"serialNumber", &info.serial},
                            {"firmwareVersion", &info.version},
                            {"firmwareReleasedDate", &released}};
    const bool hasChildren = xml.IntoElem();
    for (const Field& field : fields) {
        if (!hasChildren || !xml.FindElemNoOrder(field.element)) {
            xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] xml param %s is illegal", __func__, __LINE__,
                        field.element);
            return kMalformed;
        }
        *field.text = xml.GetData();
    }
    info.version += " " + released;
    info.infoValid = 1;
    info.active = 1;
    return 0;
}

uint32_t CVeltaDevice::getDeviceBaseInfo(std::string& out) {
    Json::Value device(Json::objectValue);
    device["devIndex"] = "";
    VeltaDeviceInfo info;
    if (getDeviceInfo(info) != 0) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] GetDeviceInfo fail and device is offline", __func__,
                    __LINE__);
        device["onlineStatus"] = false;
        out = velta::writeJson(device);
        return 0;
    }
    device["onlineStatus"] = connStatus_ != VELTA_STATUS_DISCONNECTED;
    device["devType"] = info.model;
    device["devVersion"] = info.version;
    device["serialNo"] = info.serial;
    device["active"] = info.active != 0;
    device["netZoneId"] = CVeltaDevMgr::instance().getNetZoneId();
    device["port"] = connection().port;

    Statuses proxies;
    for (const List& list : kLists) {
        Json::Value* const channels =
            list.key != nullptr ? &device[list.key] : nullptr;  // null until a request succeeds
        std::string document;
        if (sendHttpReqToDevice(document, list.path, "", kGet, "") != 0) continue;
        if (channels != nullptr && channels->isNull()) *channels = Json::Value(Json::arrayValue);
        const bool read = forEachChannel(document, list.element, [&](const Channel& channel) {
            if (channels == nullptr) {
                proxies[channel.text("id")] = channel.text("online");
                return;
            }
            Json::Value described(Json::objectValue);
            described["channelType"] = list.type;
            described["channelNo"] = channel.number();
            list.describe(channel, proxies, described);
            channels->append(std::move(described));
        });
        if (!read) return VELTA_E_BAD_PARAMETER;
    }
    out = velta::writeJson(device);
    return 0;
}

bool CVeltaDevice::hasOutput(int number) {
    for (const char* const path : {kOutputs, kProxies}) {
        std::string document;
        if (sendHttpReqToDevice(document, path, "", kGet, "") != 0) continue;
        bool found = false;
        const char* const element = path == kOutputs ? "IOOutputPort" : "InputProxyChannel";
        forEachChannel(document, element,
                       [&](const Channel& channel) { found = found || channel.number() == number; });
        if (found) return true;
    }
    return false;
}
