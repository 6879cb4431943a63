// Arming a session: the alert stream's thread, and the callback that its events go to.

#include <xlog/xlog.h>

#include "DevPlus/Facade.h"
#include "device/CVeltaDevice.h"
#include "manager/CVeltaDevMgr.h"

namespace {

constexpr uint32_t kStreamStackSize = 262144;

}  // namespace

// The address entry and the callback are in place before the stream can bring its first event, and taken back
// when it can't be started.
int CVeltaDevice::SetEventCallBack(VELTA_EventCallBack callback, void* user) {
    const CallGuard call(*this);
    CVeltaDevMgr& manager = CVeltaDevMgr::instance();
    const std::string address = connection().address();
    {
        const XPR_Guard subscribing(subscribeMutex_);
        if (connStatus_ != VELTA_STATUS_ONLINE) {
            xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] Device is not online, try to disarm old thread",
                        __func__, __LINE__);
            veltaDisarm();
            return velta::result(VELTA_E_OFFLINE);
        }
        if (callback != nullptr) {
            if (isArm()) {
                xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] set alarm already", __func__, __LINE__);
                return VELTA_OK;
            }
            manager.addEventCallBack(address, this);
            eventCallBack_.set(callback, user);
            const int armed = armIfOnline();
            if (armed == VELTA_OK) return VELTA_OK;
            xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] setup arm failed: [%s]", __func__, __LINE__,
                        address.c_str());
            manager.delEventCallBack(address);
            eventCallBack_.set(nullptr, nullptr);
            return armed;
        }
        if (!isArm()) {
            xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] cancel alarm invalid", __func__, __LINE__);
            return -1;
        }
        veltaDisarm();
        manager.delEventCallBack(address);
        eventCallBack_.set(nullptr, nullptr);
    }
    // Without a lock: it waits for a callback that is running, which may itself be in here.
    eventCallBack_.waitForCall();
    return VELTA_OK;
}

// The status may have changed since it was looked at.
int CVeltaDevice::armIfOnline() {
    const XPR_Guard guard(armMutex_);
    return connStatus_ == VELTA_STATUS_ONLINE ? armLocked() : velta::result(VELTA_E_OFFLINE);
}

int CVeltaDevice::veltaArm() {
    const XPR_Guard guard(armMutex_);
    return armLocked();
}

int CVeltaDevice::veltaDisarm() {
    const velta::Connection device = connection();
    xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] disarm begin [%s][%d]", __func__, __LINE__,
                device.host.c_str(), device.port);
    const XPR_Guard guard(armMutex_);
    disarmLocked();
    return 0;
}

int CVeltaDevice::armLocked() {
    if (isArm() && !isArmThreadExit()) return 0;
    if (streamThread_ != XPR_INVALID_HANDLE) {
        XPR_Thread_Wait(streamThread_);
        streamThread_ = XPR_INVALID_HANDLE;
        streamParser_.clear();
    }
    streamSockets_.reset();
    streamThreadExited_ = false;
    streamThread_ = XPR_Thread_Create(getAlertStreamThread, this, kStreamStackSize);
    if (streamThread_ == XPR_INVALID_HANDLE) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] XPR_Thread_Create failed[%d]", __func__, __LINE__,
                    XPR_GetSystemLastError());
        return -1;
    }
    armState_ = 0;
    return 0;
}

// Needs no memory.
void CVeltaDevice::disarmLocked() {
    if (streamThread_ != XPR_INVALID_HANDLE) {
        streamSockets_.stop();
        XPR_Thread_Wait(streamThread_);
        streamThread_ = XPR_INVALID_HANDLE;
    }
    armState_ = -1;
    streamParser_.clear();
}
