#ifndef VELTA_DEVICE_CVELTADEVICE_H
#define VELTA_DEVICE_CVELTADEVICE_H

#include <json/value.h>
#include <xpr/xpr.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "DevPlus/CDevBase.h"
#include "DevPlus/CDevConnect_V2.h"
#include "DevPlus/CDevEvent.h"
#include "DevPlus/CDevStream.h"
#include "DevPlus/CDevVELTA.h"
#include "device/AlertStreamParser.h"
#include "device/CallbackSlot.h"
#include "device/Connection.h"
#include "device/StreamSockets.h"
#include "gateway/HostRequest.h"

/* What getDeviceInfo reads. */
struct VeltaDeviceInfo {
    std::string model;
    int32_t infoValid = 0; /* 1 when every field was read */
    std::string version;   /* of the firmware, with its date */
    std::string serial;
    int32_t active = 0; /* 1 when every field was read */
};

/* The session of one device. The host reaches it through the four interfaces; <velta/...> says what their
 * operations do for a host, the comments here what the plug-in's own threads need to know.
 *
 * Its operations stand in groups, one group per source file. Unless stated, any thread may call them. */
class CVeltaDevice final : public CDevBase,
                           public CDevConnect_V2,
                           public CDevEvent,
                           public CDevStream,
                           public CDevVELTA {
 public:
    CVeltaDevice();
    /* Waits until no other thread is inside the session, but for the event delivery that calls it. */
    ~CVeltaDevice() override;

    // Connection and login (ConnectionState.cpp)

    int SetConnStatusCallBack(VELTA_ConnStatusCallBack callback, void* user) override;
    int Connect_V2(char* szURL, char* user, char* password) override;
    int DisConnect() override;
    int GetConnectStatus(int* status, char* info) override;

    /* Asks the device whether the credentials are good and reports a change of status. 0 online, -1
     * otherwise. On the timer thread, with the registry locked for reading. */
    int veltaStatusCheck();
    /* Writes the host's name of the device into the device's information, once per Connect_V2. */
    void updateDevName();
    std::string getDevIndex() const;

    // Requests to the device (Transport.cpp)

    /* Method codes of requests. */
    enum Method : unsigned char { kGet = 0, kPut = 1, kPost = 2, kDelete = 3 };

    /* Results of a request: 0 success; 401 the device refuses the credentials; -1 any other failure;
     * 0x6000003F no memory for the answer. */
    static constexpr int32_t kHttpUnauthorised = 401;
    static constexpr int32_t kTransportFailure = -1;

    /* One exchange. response: the body of the answer, whatever its status; untouched when there is no answer,
     * or an empty one with status 200. With status 200 a zero character follows the body. extra: a text for
     * the HTTP library of a host that wants one; usually empty. */
    int32_t sendHttpReqToDevice(std::string& response, const std::string& path, const std::string& body,
                                unsigned char method, const std::string& extra);
    /* One upload of a face record: its JSON and its JPEG as the parts of a form. */
    int32_t sendHttpReqToDevicebyForm(std::string& response, const std::string& path, const std::string& json,
                                      std::string image, unsigned char method);

    // Arming (Arming.cpp) and the alert stream (AlertStream.cpp)

    int SetEventCallBack(VELTA_EventCallBack callback, void* user) override;
    /* Opens the alert stream on a thread of its own. 0, also when it is open already; -1 without a thread. */
    int veltaArm();
    /* Ends the alert stream and waits for its thread; at once, however quiet the device is. 0. */
    int veltaDisarm();
    /* Armed, whether or not the stream still runs. */
    bool isArm() const { return armState_ >= 0; }
    /* The stream has ended by itself. */
    bool isArmThreadExit() const { return streamThreadExited_; }

    // Delivery of events (EventDelivery.cpp); on the alarm worker's thread

    /* What the number in a source id counts. */
    enum ChannelKind { kChannelVideo = 1, kChannelOutput = 2, kChannelTransparent = 3, kChannelDevice = 4 };

    /* Calls the host's event callback, if there is one and events are to be forwarded. The host may destroy
     * the session in it. */
    void sendEventMsg(int channelNo, int channelKind, tagEVENT_EXT_INFO* ext, tagEVENT_BASE_INFO& base);
    /* Frees an extension with its items and sets the pointer to null. */
    static void releaseEventExtInfo(tagEVENT_EXT_INFO*& ext);

    // Inventory (Inventory.cpp)

    /* Reads the device's identity. 0; 0x60000001 when its document lacks an element, with the elements before
     * that one written; -1 when it does not answer. */
    int32_t getDeviceInfo(VeltaDeviceInfo& info);
    /* The host's JSON of the device: identity, state and channels. 0, also for a device that does not answer,
     * which is then only said to be offline; 0x60000001, with out untouched, when a list is no XML document.
     */
    uint32_t getDeviceBaseInfo(std::string& out);
    /* Whether number counts one of the device's own alarm outputs ("analog" in the inventory) or one of its
     * IP channels
     * ("digital"), whose outputs a recorder numbers like the channels. Asks the device. */
    bool hasOutput(int number);

    // Gateway (gateway/Gateway.cpp)

    int VELTA_Getway(char* request, char* response, unsigned int responseSize, tagVELTA_INFO* info) override;
    int DeviceLoop(char* buffer, unsigned int size) override;
    /* Offers a request to the routes of the common operations (gateway/CommonRoutes.cpp). The result code of
     * the route that took it, 0xFFFFFFFF when that set none; nothing when no route takes it. */
    std::optional<uint32_t> DealwithCommOpt(velta::HostRequest& request, std::string& answer);
    /* Reads a device's ResponseStatus document. 0: success. Otherwise its error number, with the host's
     * status JSON in answer; 0x60000001, with answer untouched, when the document can't be read. */
    uint32_t parseVELTAResponseStatus(std::string& answer, const std::string& deviceXml);

    // Device information (translate/system/DeviceInfo.cpp). Translators return an error number: 0 success,
    // 0xFFFFFFFF no code; answer receives the host's JSON, or the status of what went wrong where the device
    // says it.

    uint32_t veltaGetDeviceInfo(std::string& answer);
    uint32_t veltaPutDeviceInfo(std::string& answer, const Json::Value& body);
    static bool transDeviceInfoXml2Json(std::string& answer, const std::string& deviceXml);
    static bool transDeviceInfoJson2Xml(std::string& xml, const Json::Value& body);
    /* Whether the first length bytes of a name are what devices allow: ASCII without control characters and
     * without / \ : * ? ' " < > | %. */
    static bool checkDeviceName(const char* name, int length);

    // Time (translate/system/TimeManagement.cpp). code takes the error number; body is the host's text.

    void veltaGetTimeMngParam(int& code, std::string& answer);
    void veltaSetTimeMngParam(int& code, const std::string& body, std::string& answer);
    void veltaGetTimeZoneParam(int& code, std::string& answer);
    void veltaSetTimeZoneParam(int& code, const std::string& body, std::string& answer);
    static bool transTimeMngXml2Json(const std::string& deviceXml, std::string& answer);

    // Alarm output and reboot (translate/system/AlarmOutput.cpp)

    /* path: of the request, without its query. */
    uint32_t veltaSetAlarmOutTrigger(const std::string& path, const Json::Value& body);
    static bool isValidOutputFormVelta(const std::string& reply);
    uint32_t veltaPutRebootDevice(std::string& answer);

    // Network interfaces (translate/system/NetworkInterfaces.cpp)

    uint32_t veltaGetNetworkInterfaceList(std::string& answer);
    uint32_t veltaGetNetworkInterface(int id, std::string& answer);
    uint32_t veltaPutNetworkInterface(const std::string& path, const Json::Value& body, std::string& answer);
    uint32_t veltaGetIPAddress(int id, std::string& answer);
    uint32_t veltaPutIPAddress(const std::string& path, const Json::Value& body, std::string& answer);

    // Access control: translators of JSON resources send path with "?format=json", and the host's body unchanged
    // unless they say otherwise. Those that write persons, cards, faces or fingerprints hold requestMutex_ for
    // their whole run, so that they go one after the other.

    // Capabilities and reads that go through unchanged (translate/acs/Capabilities.cpp)

    /* The device's JSON, written anew. */
    uint32_t veltaGet(std::string& answer, const std::string& path);
    uint32_t veltaGetAcsCapabilities(std::string& answer);
    uint32_t veltaGetAcsUserCount(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetDeleteAcsPermissionStatus(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetAcsCardCount(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetAddAcsFpProgress(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetAcsFpCapabilities(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetDeleteAcsFpProgress(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetAcsFpDeleteCapabilities(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetAcsCardReaderCfg(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetUserRightHolidayPlanCfg(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetUserRightHolidayGroupCfg(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetUserRightWeekPlanCfg(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetUserRightPlanTemplate(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }
    uint32_t veltaGetAcsFaceRecognizeMode(std::string& answer, const std::string& path) {
        return veltaGet(answer, path);
    }

    // Persons (translate/acs/Persons.cpp)

    /* One person unchecked, or a batch of up to 30, which succeeds as a whole and tells of each person apart. */
    uint32_t veltaAddAcsUser(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaSetAcsUser(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaSearchAcsUser(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaDeleteAcsPermissionCfg(std::string& answer, const std::string& path,
                                         const velta::HostBody& body);

    // Cards (translate/acs/Cards.cpp)

    uint32_t veltaAddAcsCard(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaSetAcsCard(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaDeleteAcsCard(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaSearchAcsCard(std::string& answer, const std::string& path, const velta::HostBody& body);

    // Faces (translate/acs/Faces.cpp)

    /* Reads which face libraries the device has. */
    uint32_t veltaGetFDLib();
    uint32_t veltaAddAcsFace(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaSetUpAcsFace(std::string& answer, const std::string& path, const velta::HostBody& body);
    /* Has no route; path is not looked at. */
    uint32_t veltaSetAcsFace(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaDeleteAcsFace(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaGetAcsFaceCount(std::string& answer, const std::string& path);
    uint32_t veltaSearchAcsFace(std::string& answer, const std::string& path, const velta::HostBody& body);

    // Fingerprints (translate/acs/Fingerprints.cpp) and their capture (translate/acs/FingerprintCapture.cpp)

    uint32_t veltaAddAcsFp(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaSetAcsFp(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaSearchAcsFp(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaDeleteAcsFp(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaSetAcsCardReaderCfg(std::string& answer, const std::string& path,
                                      const velta::HostBody& body);
    uint32_t veltaCaptureAcsFp(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaGetAcsFpCaptureCapabilities(std::string& answer, const std::string& path);
    static bool transCaptureAcsFpJson2Xml(const std::string& json, std::string& xml);

    // Log of access events (translate/acs/EventSearch.cpp)

    uint32_t veltaSearchAcsEvent(std::string& answer, const std::string& path, const velta::HostBody& body);

    // Doors (translate/acs/Doors.cpp)

    uint32_t veltaRemoteControlDoor(std::string& answer, const std::string& path,
                                    const velta::HostBody& body);
    /* Learns the number of doors. */
    uint32_t veltaGetRemoteDoorCap(std::string& answer);
    uint32_t veltaGetDoorParam(std::string& answer, const std::string& path);
    uint32_t veltaSetDoorParam(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaGetAcsWorkStatus(std::string& answer, const std::string& path);
    static bool transRemoteDoorControlJson2Xml(const std::string& json, std::string& xml);

    // Schedules and recognition mode (translate/acs/Schedules.cpp)

    uint32_t veltaSetUserRightWeekPlanCfg(std::string& answer, const std::string& path,
                                          const velta::HostBody& body);
    uint32_t veltaSetUserRightHolidayPlanCfg(std::string& answer, const std::string& path,
                                             const velta::HostBody& body);
    uint32_t veltaSetUserRightHolidayGroupCfg(std::string& answer, const std::string& path,
                                              const velta::HostBody& body);
    uint32_t veltaSetUserRightPlanTemplate(std::string& answer, const std::string& path,
                                           const velta::HostBody& body);
    uint32_t veltaSetAcsFaceRecognizeMode(std::string& answer, const std::string& path,
                                          const velta::HostBody& body);

    // Hosts that events are pushed to (translate/acs/EventHosts.cpp)

    uint32_t veltaGetEventHost(std::string& answer, const std::string& path);
    /* Replaces the table, which stands under one path whatever the host's is. */
    uint32_t veltaSetEventHost(std::string& answer, const std::string& path, const velta::HostBody& body);
    uint32_t veltaDeleteEventHost(std::string& answer, const std::string& path);
    /* Asks the device how many hosts it takes. */
    bool isValidHostID(std::string id);

    // Media: talk and record download do nothing and succeed

    int StartTalk(DEVICE_T*, VELTA_StreamCallBack, void*, void*&) override { return VELTA_OK; }
    int StopTalk(void*) override { return VELTA_OK; }
    int SendTalkData(void*, char*, unsigned long) override { return VELTA_OK; }
    int StartDownloadRecord(DEVICE_PALYBACK_T*, VELTA_StreamCallBack, void*, void*&,
                            unsigned long*) override {
        return VELTA_OK;
    }
    int StopDownloadRecord(void*&) override { return VELTA_OK; }

 private:
    /* Counts a host's call for its duration, so that the destructor can wait for it. */
    class CallGuard;

    void waitForCalls();

    velta::Connection connection() const;
    bool isOnline() const { return connStatus_ == VELTA_STATUS_ONLINE; }

    void NotifyConnStatus(int newStatus, const char* errorInfo);

    int armIfOnline() XPR_EXCLUDES(armMutex_);
    int armLocked() XPR_REQUIRES(armMutex_);
    void disarmLocked() XPR_REQUIRES(armMutex_);
    static int getAlertStreamThread(void* session);
    void getAlertStream();
    static size_t writeResponseBody(char* data, size_t size, size_t count, void* session);
    static size_t endOfHeaders(char* data, size_t size, size_t count, void* session);

    uint32_t dispatch(std::string_view text, std::string& answer);
    uint32_t triggerOutput(const std::string& path, velta::HostRequest& request);
    uint32_t forwardToDevice(const std::string& path, const std::string& body, unsigned char method,
                             std::string& answer);

    /* The id of the face library of a type; empty when the device has none. */
    std::string faceLibraryId(const std::string& type) const;
    uint32_t learnDoorCount(std::string& answer);
    bool hasDoor(int number) const;
    uint32_t putDoor(std::string& answer, const std::string& path, const std::string& document);

    mutable xpr::xpr_mutex stateMutex_;  // held for copying only
    velta::Connection connection_ XPR_GUARDED_BY(stateMutex_);
    std::string resType_ XPR_GUARDED_BY(stateMutex_);  // kept for the host, not interpreted
    std::string devIndex_ XPR_GUARDED_BY(stateMutex_);
    std::string deviceName_ XPR_GUARDED_BY(stateMutex_);
    bool nameUpdatePending_ XPR_GUARDED_BY(stateMutex_) = false;
    velta::Connection refused_ XPR_GUARDED_BY(stateMutex_);  // the credentials that the device refused last
    std::map<std::string, std::string> faceLibraries_ XPR_GUARDED_BY(stateMutex_);  // ids by type
    std::atomic<int> doorCount_{-1};  // -1 not asked for yet, 0 after a failed reading

    std::atomic<int> connStatus_{VELTA_STATUS_UNKNOWN};  // written under armMutex_
    velta::CallbackSlot<VELTA_ConnStatusCallBack> connStatusCallBack_;
    velta::CallbackSlot<VELTA_EventCallBack> eventCallBack_;

    // One write of persons, cards, faces or fingerprints at a time. Held while the device answers: nobody takes
    // it who holds another lock.
    xpr::xpr_mutex requestMutex_;

    // Lock order: subscribeMutex_, then armMutex_ or a lock of the manager; armMutex_, then stateMutex_.
    xpr::xpr_mutex subscribeMutex_;  // one SetEventCallBack at a time
    xpr::xpr_mutex armMutex_;        // starting and ending the stream, and the status that decides about it
    std::atomic<int> armState_{-1};  // -1 not armed, 0 armed
    std::atomic<bool> streamThreadExited_{false};
    XPR_HANDLE streamThread_ XPR_GUARDED_BY(armMutex_) = XPR_INVALID_HANDLE;
    velta::StreamSockets streamSockets_;
    CURL* streamHandle_ = nullptr;           // stream thread only
    size_t streamHeaderBytes_ = 0;           // stream thread only
    velta::AlertStreamParser streamParser_;  // stream thread only, or while there is none

    xpr::xpr_mutex callMutex_;
    int callsInside_ XPR_GUARDED_BY(callMutex_) = 0;
    std::condition_variable_any callsEnded_;
};

/* Holds a host's call for the destructor to wait for. */
class CVeltaDevice::CallGuard {
 public:
    explicit CallGuard(CVeltaDevice& device) : device_(device) {
        const XPR_Guard guard(device_.callMutex_);
        ++device_.callsInside_;
    }
    ~CallGuard() {
        const XPR_Guard guard(device_.callMutex_);
        --device_.callsInside_;
        device_.callsEnded_.notify_all();
    }
    CallGuard(const CallGuard&) = delete;
    CallGuard& operator=(const CallGuard&) = delete;

 private:
    CVeltaDevice& device_;
};

#endif
