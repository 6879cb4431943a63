// Connecting a session, its status, and the check that keeps the status true.

#include <xlog/xlog.h>
#include <velta/connect.h>

#include <exception>

#include "DevPlus/Facade.h"
#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"
#include "gateway/TagText.h"
#include "manager/CVeltaDevMgr.h"

using velta::result;

namespace {

constexpr const char* kUserCheckPath = "/VELTA/Security/userCheck";
constexpr const char* kDeviceInfoPath = "/VELTA/System/deviceInfo";
constexpr const char* kHintRefused = "OfflineHint=4";
constexpr const char* kHintLocked = "OfflineHint=5";

struct Refusal {
    int status;
    const char* hint;
};

// What a device says about a refused log-in. An answer that is no user check tells nothing about the user.
Refusal readRefusal(const std::string& answer) {
    CXmlBase xml;
    if (!xml.Parse(answer.c_str()) || !xml.SetRoot() || xml.GetNodeName() != "userCheck") {
        return {VELTA_STATUS_UNKNOWN, ""};
    }
    const bool locked = xml.IntoElem() && xml.FindElem("lockStatus") && xml.GetData() == "lock";
    return locked ? Refusal{VELTA_STATUS_LOCKED, kHintLocked} : Refusal{VELTA_STATUS_REFUSED, kHintRefused};
}

}  // namespace

CVeltaDevice::CVeltaDevice()
    : streamParser_([](std::string message) { CVeltaDevMgr::instance().addAlarmMsg(std::move(message)); }) {
    CDevEvent::Bind(this);
    CDevStream::Bind(this);
    CDevConnect_V2::Bind(this);
    CDevVELTA::Bind(this);
}

CVeltaDevice::~CVeltaDevice() {
    CVeltaDevMgr& manager = CVeltaDevMgr::instance();
    manager.forgetDevice(this);
    eventCallBack_.retire();
    try {
        const velta::Connection device = connection();
        xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] release device [%s] [%s] [%d]", __func__, __LINE__,
                    getDevIndex().c_str(), device.host.c_str(), device.port);
        CVeltaDevice::DisConnect();
    } catch (const std::exception& error) {  // what follows needs no memory
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s", __func__, __LINE__, error.what());
    }
    waitForCalls();
    // Calls that were still inside may have connected and armed the session again; one that was connected under
    // several indexes, or cancelled its events offline, has left more behind than DisConnect takes back.
    manager.forgetDevice(this);
    {
        const XPR_Guard guard(armMutex_);
        disarmLocked();
    }
    manager.forgetEventCallBacks(this);
}

void CVeltaDevice::waitForCalls() {
    const XPR_Guard guard(callMutex_);
    while (callsInside_ > 0)
        callsEnded_.wait(callMutex_);
}

velta::Connection CVeltaDevice::connection() const {
    const XPR_Guard guard(stateMutex_);
    return connection_;
}

std::string CVeltaDevice::getDevIndex() const {
    const XPR_Guard guard(stateMutex_);
    return devIndex_;
}

int CVeltaDevice::SetConnStatusCallBack(VELTA_ConnStatusCallBack callback, void* user) {
    const CallGuard call(*this);
    connStatusCallBack_.setAndWait(callback, user);
    return VELTA_OK;
}

int CVeltaDevice::Connect_V2(char* szURL, char* user, char* password) {
    const CallGuard call(*this);
    if (szURL == nullptr || user == nullptr || password == nullptr) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param is null", __func__, __LINE__);
        return result(VELTA_E_NULL_PARAMETER);
    }
    const velta::ConnectionUrl url = velta::ConnectionUrl::parse(szURL);
    if (url.connect != "TCP/IP") {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] szUrl format error", __func__, __LINE__);
        return result(VELTA_E_BAD_PARAMETER);
    }
    const velta::Connection device{url.host, url.port, user, password};
    {
        const XPR_Guard guard(stateMutex_);
        connection_ = device;
        resType_ = url.resType;
        devIndex_ = url.devIndex;
        deviceName_ = url.deviceName;
        nameUpdatePending_ = true;
    }
    if (device.host.empty() || device.user.empty() || device.password.empty() || !url.isSound() ||
        device.user.size() + device.password.size() > VELTA_MAX_CREDENTIALS) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] szUrl format error", __func__, __LINE__);
        return result(VELTA_E_BAD_PARAMETER);
    }
    return CVeltaDevMgr::instance().addDevice(url.devIndex, this, {device.host, device.port});
}

int CVeltaDevice::GetConnectStatus(int* status, char*) {
    if (status == nullptr) return result(VELTA_E_NULL_PARAMETER);
    *status = connStatus_;
    return VELTA_OK;
}

// The status is stored before the change is looked at: the host asked for it, so its callback is not called.
int CVeltaDevice::DisConnect() {
    const CallGuard call(*this);
    CVeltaDevMgr::instance().delDevice(getDevIndex());
    SetEventCallBack(nullptr, nullptr);
    {
        const XPR_Guard guard(armMutex_);
        connStatus_ = VELTA_STATUS_DISCONNECTED;
    }
    NotifyConnStatus(VELTA_STATUS_DISCONNECTED, "");
    return VELTA_OK;
}

int CVeltaDevice::veltaStatusCheck() {
    std::string answer;
    const int32_t sent = sendHttpReqToDevice(answer, kUserCheckPath, "", kGet, "");
    if (sent == 0) {
        updateDevName();
        NotifyConnStatus(VELTA_STATUS_ONLINE, "");
        return 0;
    }
    Refusal refusal{VELTA_STATUS_UNKNOWN, ""};
    if (sent == kHttpUnauthorised) {
        {
            const XPR_Guard guard(stateMutex_);
            refused_ = connection_;
        }
        refusal = readRefusal(answer);
    }
    NotifyConnStatus(refusal.status, refusal.hint);
    return -1;
}

// The callback runs before anything changes and without a lock; arming and the new status then change
// together, so that a callback that is set meanwhile finds either the old state or the new one.
void CVeltaDevice::NotifyConnStatus(int newStatus, const char* errorInfo) {
    if (newStatus == connStatus_) return;
    std::string info = errorInfo;
    connStatusCallBack_.call(static_cast<CDevBase*>(this), newStatus, info.data());

    const XPR_Guard guard(armMutex_);
    if (eventCallBack_.isSet()) {
        if (connStatus_ == VELTA_STATUS_ONLINE && isArm()) disarmLocked();
        if (newStatus == VELTA_STATUS_ONLINE && !isArm()) armLocked();
    }
    connStatus_ = newStatus;
}

void CVeltaDevice::updateDevName() {
    std::string name;
    {
        const XPR_Guard guard(stateMutex_);
        if (!nameUpdatePending_ || deviceName_.empty()) return;
        name = deviceName_;
    }
    std::string document;
    if (sendHttpReqToDevice(document, kDeviceInfoPath, "", kGet, "") != 0) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] updateDevName error [%s]", __func__, __LINE__,
                    document.c_str());
        return;
    }
    if (!velta::replaceDeviceName(document, name)) {
        xlog_format(XLOG_WARNING, "VELTADEV", "[%s(%d)] device information without a name", __func__,
                    __LINE__);
        return;
    }
    std::string answer;
    if (sendHttpReqToDevice(answer, kDeviceInfoPath, document, kPut, "") != 0) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] updateDevName error [%s][%s]", __func__, __LINE__,
                    name.c_str(), answer.c_str());
        return;
    }
    const XPR_Guard guard(stateMutex_);
    if (deviceName_ == name) nameUpdatePending_ = false;
}
