// The alarm queue and the thread that drains it.

#include <xlog/xlog.h>

#include <exception>

#include "device/CVeltaDevice.h"
#include "device/EventRecords.h"
#include "gateway/JsonText.h"
#include "manager/CVeltaDevMgr.h"

namespace {

constexpr uint32_t kWorkerWaitMs = 1000;
constexpr int kErrorBadParameter = static_cast<int>(VELTA_E_BAD_PARAMETER);

}  // namespace

int CVeltaDevMgr::addAlarmMsg(std::string msg) {
    {
        const std::lock_guard<std::mutex> guard(alarmQueueLock_);
        alarmQueue_.push_back(std::move(msg));
    }
    return XPR_SemPost(&alarmSemaphore_);
}

int CVeltaDevMgr::alarmMsgProcessThread(void* mgr) {
    CVeltaDevMgr& self = *static_cast<CVeltaDevMgr*>(mgr);
    while (!self.stop_) {
        if (XPR_SemTimedWait(&self.alarmSemaphore_, kWorkerWaitMs) != XPR_OK) continue;
        if (self.stop_) break;
        self.alarmMsgProcess();
    }
    return 0;
}

// Takes the whole queue in one step, so that the streams of the devices never wait for a host's callback.
void CVeltaDevMgr::alarmMsgProcess() {
    {
        const std::lock_guard<std::mutex> guard(alarmQueueLock_);
        takenMessages_.swap(alarmQueue_);
    }
    for (; !takenMessages_.empty() && !stop_; takenMessages_.pop_front()) {
        try {
            processAcsAlarm(takenMessages_.front());
        } catch (const std::exception& error) {
            xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s", __func__, __LINE__, error.what());
        }
    }
}

int CVeltaDevMgr::processAcsAlarm(const std::string& msg) {
    Json::Value value;
    const Json::Value& root = value;  // reading a member of a constant value adds none
    if (msg.empty() || msg.front() != '{' || !velta::parseJson(msg, value) || !root["ipAddress"].isString()) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] wrong param", __func__, __LINE__);
        return kErrorBadParameter;
    }
    const std::string ip = root["ipAddress"].asString();
    if (ip.empty()) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] wrong param [%s]", __func__, __LINE__, ip.c_str());
        return kErrorBadParameter;
    }
    const Json::Value& portNo = root["portNo"];
    const int port = portNo.isInt() ? portNo.asInt() : 80;

    struct Delivery {
        CVeltaDevMgr& manager;
        CVeltaDevice* const dev;
        ~Delivery() {
            if (dev != nullptr) manager.endDelivery();
        }
    };
    const std::string addr = ip + ":" + std::to_string(port);
    const Delivery delivery{*this, beginDelivery(addr)};
    if (delivery.dev == nullptr) {
        xlog_format(XLOG_WARNING, "VELTADEV", "[%s(%d)] not find the device: %s", __func__, __LINE__,
                    addr.c_str());
        return -1;
    }

    tagEVENT_BASE_INFO base;
    if (!velta::fillEventRecord(root, port, base)) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] wrong param: [dateTime]", __func__, __LINE__);
        return -1;
    }
    tagEVENT_EXT_INFO* ext = nullptr;
    if (velta::announcesPicture(root)) {
        ext = velta::makePictureExtension(msg);
        if (ext == nullptr) {
            xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] mem alloc error", __func__, __LINE__);
            return -1;
        }
    }
    // The host may destroy the session in its callback: from here on only the extension is touched.
    delivery.dev->sendEventMsg(base.channel, CVeltaDevice::kChannelDevice, ext, base);
    if (ext != nullptr) CVeltaDevice::releaseEventExtInfo(ext);
    return 0;
}
