// From the alarm worker to the host's event callback.

#include <xlog/xlog.h>

#include <cstdio>

#include "device/CVeltaDevice.h"
#include "device/EventRecords.h"
#include "manager/CVeltaDevMgr.h"

namespace {

constexpr size_t kSourceIdSize = 128;

// "V_1", "O_1", "T_1", "D_1"; empty for another kind.
void writeSourceId(char (&text)[kSourceIdSize], int channelNo, int channelKind) {
    constexpr char kLetters[] = {'V', 'O', 'T', 'D'};
    text[0] = '\0';
    if (channelKind < CVeltaDevice::kChannelVideo || channelKind > CVeltaDevice::kChannelDevice) return;
    std::snprintf(text, sizeof text, "%c_%d", kLetters[channelKind - 1], channelNo);
}

}  // namespace

void CVeltaDevice::sendEventMsg(int channelNo, int channelKind, tagEVENT_EXT_INFO* ext,
                                tagEVENT_BASE_INFO& base) {
    char sourceId[kSourceIdSize] = {};
    writeSourceId(sourceId, channelNo, channelKind);
    if (!CVeltaDevMgr::instance().getEventTransmitCfg() ||
        !eventCallBack_.call(static_cast<CDevBase*>(this), sourceId, &base, ext)) {
        xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] send failed.", __func__, __LINE__);
    }
}

void CVeltaDevice::releaseEventExtInfo(tagEVENT_EXT_INFO*& ext) {
    velta::releaseExtension(ext);
}
