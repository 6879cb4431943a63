#include "manager/CVeltaDevMgr.h"

#include <curl/curl.h>
#include <xlog/xlog.h>

#include "device/CVeltaDevice.h"

namespace {

constexpr uint32_t kOnlineCheckIntervalMs = 15000;
constexpr uint32_t kPauseBetweenDevicesMs = 20;
constexpr uint32_t kWorkerStackSize = 0x40000;

int onlineTimer(int timerId, void* mgr) {
    return static_cast<CVeltaDevMgr*>(mgr)->onlineStatusTimer(timerId);
}

// When the library is unloaded, or the process ends. A process that ends without Uninit keeps the object: its
// threads still use it.
__attribute__((destructor)) void releaseManager() {
    const CVeltaDevMgr* manager = CVeltaDevMgr::existing();
    if (manager != nullptr && !manager->isRunning()) CVeltaDevMgr::release();
}

}  // namespace

int CVeltaDevMgr::init() {
    curl_global_init(CURL_GLOBAL_NOTHING);

    int timerId = XPR_TIMER_INVALID;
    const int timer = XPR_SetTimer(onlineTimer, this, kOnlineCheckIntervalMs, &timerId, 0);
    if (timer != XPR_OK) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] xpr_settimer failed[%d]", __func__, __LINE__, timer);
        curl_global_cleanup();
        return -1;
    }
    onlineTimerId_ = timerId;

    try {
        tagNetworkInfo unused{};
        getCurrentNetworkInfo(unused, true);
    } catch (const std::exception& error) {  // the timer runs already
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s", __func__, __LINE__, error.what());
    }
    eventTransmitCfg_ = false;

    if (XPR_SemCreate(&alarmSemaphore_, 0) == XPR_OK) {
        worker_ = XPR_Thread_Create(alarmMsgProcessThread, this, kWorkerStackSize);
        if (worker_ != XPR_INVALID_HANDLE) {
            running_ = true;
            return 0;
        }
        XPR_SemDestroy(&alarmSemaphore_);
    }
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] alarm worker failed[%d]", __func__, __LINE__,
                XPR_GetSystemLastError());
    XPR_KillTimer(onlineTimerId_.exchange(XPR_TIMER_INVALID));
    curl_global_cleanup();
    return -1;
}

// The HTTP library goes last: a check that is still in an exchange ends first, when its timer is killed.
int CVeltaDevMgr::unInit() {
    stop_ = true;
    if (worker_ != XPR_INVALID_HANDLE) {
        XPR_SemPost(&alarmSemaphore_);
        XPR_Thread_Wait(worker_);
        worker_ = XPR_INVALID_HANDLE;
        XPR_SemDestroy(&alarmSemaphore_);
    }
    for (std::atomic<int>* timer : {&onlineTimerId_, &alarmStatusTimerId_}) {
        const int id = timer->exchange(XPR_TIMER_INVALID);
        if (id != XPR_TIMER_INVALID) XPR_KillTimer(id);
    }
    {
        const std::lock_guard<std::mutex> guard(alarmQueueLock_);
        alarmQueue_.clear();
    }
    {
        const VXBase::WriteGuard guard(deviceLock_);
        devices_.clear();
        deviceLoops_.clear();
    }
    {
        const XPR_Guard guard(eventCallBackLock_);
        eventCallBacks_.clear();
    }
    if (running_.exchange(false)) curl_global_cleanup();
    return 0;
}

int CVeltaDevMgr::addDevice(const std::string& key, CVeltaDevice* dev, const VeltaDeviceLoop& loop) {
    const VXBase::WriteGuard guard(deviceLock_);
    deviceLoops_[key] = loop;
    devices_[key] = dev;
    return 0;
}

int CVeltaDevMgr::delDevice(const std::string& key) {
    const VXBase::WriteGuard guard(deviceLock_);
    devices_.erase(key);
    deviceLoops_.erase(key);
    return 0;
}

void CVeltaDevMgr::forgetDevice(const CVeltaDevice* dev) {
    const VXBase::WriteGuard guard(deviceLock_);
    for (auto entry = devices_.begin(); entry != devices_.end();) {
        if (entry->second == dev) {
            deviceLoops_.erase(entry->first);
            entry = devices_.erase(entry);
        } else {
            ++entry;
        }
    }
}

CVeltaDevice* CVeltaDevMgr::getDevice(const std::string& key) {
    const auto entry = devices_.find(key);
    return entry == devices_.end() ? nullptr : entry->second;
}

int CVeltaDevMgr::addEventCallBack(const std::string& addr, CVeltaDevice* dev) {
    const XPR_Guard guard(eventCallBackLock_);
    eventCallBacks_[addr] = dev;
    return 0;
}

int CVeltaDevMgr::delEventCallBack(const std::string& addr) {
    const XPR_Guard guard(eventCallBackLock_);
    eventCallBacks_.erase(addr);
    return 0;
}

void CVeltaDevMgr::forgetEventCallBacks(const CVeltaDevice* dev) {
    const XPR_Guard guard(eventCallBackLock_);
    std::erase_if(eventCallBacks_, [dev](const auto& entry) { return entry.second == dev; });
    if (delivering_ == dev && deliveryThread_ == std::this_thread::get_id()) delivering_ = nullptr;
    while (delivering_ == dev)
        deliveryEnded_.wait(eventCallBackLock_);
}

CVeltaDevice* CVeltaDevMgr::beginDelivery(const std::string& addr) {
    const XPR_Guard guard(eventCallBackLock_);
    const auto entry = eventCallBacks_.find(addr);
    if (entry == eventCallBacks_.end()) return nullptr;
    delivering_ = entry->second;
    deliveryThread_ = std::this_thread::get_id();
    return entry->second;
}

void CVeltaDevMgr::endDelivery() {
    const XPR_Guard guard(eventCallBackLock_);
    delivering_ = nullptr;
    deliveryEnded_.notify_all();
}

int CVeltaDevMgr::getEventCallBackParam(const std::string& addr, CVeltaDevice*& dev) {
    const XPR_Guard guard(eventCallBackLock_);
    const auto entry = eventCallBacks_.find(addr);
    if (entry == eventCallBacks_.end()) return -1;
    dev = entry->second;
    return 0;
}

int CVeltaDevMgr::getEventCallBackNum() {
    const XPR_Guard guard(eventCallBackLock_);
    return static_cast<int>(eventCallBacks_.size());
}

int CVeltaDevMgr::getMutiNetworkEventParam(const std::string& ip, const std::string& port,
                                           CVeltaDevice*& dev) {
    if (getEventCallBackParam(ip + ":" + port, dev) == 0) return 0;
    xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] GetEventCallBackParam fail,strKey:%s:%s.", __func__,
                __LINE__, ip.c_str(), port.c_str());

    tagNetworkInfo info{};
    getCurrentNetworkInfo(info, false);
    std::vector<std::string> candidates{"127.0.0.1"};
    bool isLocal = false;
    for (const tagNetworkEntry& entry : info.ipv4) {
        if (entry.address[0] == 0) break;
        candidates.emplace_back(reinterpret_cast<const char*>(entry.address));
        isLocal = isLocal || candidates.back() == ip;
    }
    if (!isLocal) return -1;
    xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] ip:%s find success in other network.", __func__, __LINE__,
                ip.c_str());
    for (const std::string& address : candidates) {
        std::string key = address;
        key.append(":").append(port);
        if (getEventCallBackParam(key, dev) != 0) continue;
        xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] strKey:%s find success.", __func__, __LINE__,
                    key.c_str());
        return 0;
    }
    return -1;
}

void CVeltaDevMgr::setNetZoneIp(const std::string& ip) {
    const XPR_Guard guard(settingsLock_);
    netZoneIp_ = ip;
}

std::string CVeltaDevMgr::getNetZoneIp() {
    const XPR_Guard guard(settingsLock_);
    return netZoneIp_;
}

int CVeltaDevMgr::setEventTransmitCfg(bool forward) {
    eventTransmitCfg_ = forward;
    return 0;
}

int CVeltaDevMgr::onlineStatusTimer(int timerId) {
    if (timerId != onlineTimerId_) return 0;
    if (onlineCheckBusy_.exchange(true)) {
        xlog_format(XLOG_WARNING, "VELTADEV", "[%s(%d)] OnlineStatusTimer is going.", __func__, __LINE__);
        return 0;
    }
    try {
        checkAllDevices();
    } catch (const std::exception& error) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s", __func__, __LINE__, error.what());
    }
    onlineCheckBusy_ = false;
    return 0;
}

// Each session is checked under the read lock, so that it can't leave the registry, and be freed, meanwhile.
void CVeltaDevMgr::checkAllDevices() {
    std::map<std::string, VeltaDeviceLoop> loops;
    {
        const VXBase::ReadGuard guard(deviceLock_);
        loops = deviceLoops_;
    }
    for (const auto& [key, loop] : loops) {
        if (stop_) return;
        {
            const VXBase::ReadGuard guard(deviceLock_);
            CVeltaDevice* dev = getDevice(key);
            if (dev != nullptr) {
                dev->veltaStatusCheck();
            } else {
                xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] already disconnect [%s, %s, %d] ", __func__,
                            __LINE__, key.c_str(), loop.host.c_str(), loop.port);
            }
        }
        XPR_Sleep(kPauseBetweenDevicesMs);
    }
}

int CVeltaDevMgr::alarmStatusTimer(int timerId) {
    if (timerId != alarmStatusTimerId_) return 0;
    const XPR_Guard guard(eventCallBackLock_);
    for (const auto& [addr, dev] : eventCallBacks_) {
        if (stop_) break;
        if (dev->isArm() && dev->isArmThreadExit()) dev->veltaArm();
    }
    return 0;
}
