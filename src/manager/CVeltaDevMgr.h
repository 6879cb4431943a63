/* The process-wide manager of device sessions: who they are, the queue and thread that turn alarm messages
 * into host events, and the online check. */
#ifndef VELTA_MANAGER_CVELTADEVMGR_H
#define VELTA_MANAGER_CVELTADEVMGR_H

#include <xpr/xpr.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "manager/CRWLock.h"
#include "manager/LocalNetwork.h"
#include "manager/singleton.h"

class CVeltaDevice;

/* Where a registered session's device is; for the log. */
struct VeltaDeviceLoop {
    std::string host;
    int port = 0;
};

/* Operations return 0 unless stated. Any thread may call them unless stated.
 * No two of its locks are ever held together. */
class CVeltaDevMgr : public singleton<CVeltaDevMgr> {
 public:
    /* Starts the alarm worker and the online check. -1 when the system refuses; nothing is left running then.
     * After an unInit it starts a worker that ends at once and a check that checks nothing: the stop is for
     * good. Serialised with unInit by the host. */
    int init();

    /* Stops both, waiting for what they are doing, and forgets all sessions and messages. */
    int unInit();

    /* Whether anything of init is still there. */
    bool isRunning() const { return running_; }

    // Sessions by device key: what the online check walks. Not owning.

    /* Registers a session; an existing entry of that key is replaced. */
    int addDevice(const std::string& key, CVeltaDevice* dev, const VeltaDeviceLoop& loop);
    /* Takes out the entry of a key; an absent key is no error. */
    int delDevice(const std::string& key);
    /* Takes out every entry of a session, under whatever key. Afterwards no check is inside it. */
    void forgetDevice(const CVeltaDevice* dev);
    /* The session of a key, or null. The caller holds deviceLock(). */
    CVeltaDevice* getDevice(const std::string& key);
    VXBase::CRWLock& deviceLock() { return deviceLock_; }

    // Sessions by device address ("10.0.0.5:80"): where alarm messages are routed. Not owning.

    int addEventCallBack(const std::string& addr, CVeltaDevice* dev);
    int delEventCallBack(const std::string& addr);
    /* Takes out every entry of a session. Afterwards no delivery is inside it, unless the caller is that
     * delivery. */
    void forgetEventCallBacks(const CVeltaDevice* dev);
    /* 0 with the session in dev, or -1 with dev untouched. */
    int getEventCallBackParam(const std::string& addr, CVeltaDevice*& dev);
    int getEventCallBackNum();
    /* As getEventCallBackParam; an address of this machine also finds a session that is registered under
     * 127.0.0.1 or under another address of the machine. */
    int getMutiNetworkEventParam(const std::string& ip, const std::string& port, CVeltaDevice*& dev);

    // Settings of the host.

    void setNetZoneIp(const std::string& ip);
    std::string getNetZoneIp();
    void setNetZoneId(int id) { netZoneId_ = id; }
    int getNetZoneId() const { return netZoneId_; }
    /* Whether events are forwarded to the host's callbacks. */
    int setEventTransmitCfg(bool forward);
    bool getEventTransmitCfg() const { return eventTransmitCfg_; }

    /* See velta::LocalNetwork. */
    int getCurrentNetworkInfo(tagNetworkInfo& info, bool refresh) {
        return localNetwork_.getCurrentNetworkInfo(info, refresh);
    }

    // Alarm messages: a JSON object, optionally followed by a picture part.

    /* Queues a message for the worker. The result is that of waking it. */
    int addAlarmMsg(std::string msg);
    /* Turns a message into a host event. 0 delivered; 0x60000001 not a JSON object with an "ipAddress"; -1
     * unknown device, no "dateTime", or out of memory. On the worker's thread. */
    int processAcsAlarm(const std::string& msg);

    // Timer callbacks; other timers' ids are ignored.

    int onlineStatusTimer(int timerId);
    /* Arms sessions again whose alert stream has ended. Never scheduled: a session is armed again when it
     * comes back online, or by its host. */
    int alarmStatusTimer(int timerId);

 private:
    friend class singleton<CVeltaDevMgr>;
    CVeltaDevMgr() = default;
    ~CVeltaDevMgr() override = default;

    static int alarmMsgProcessThread(void* mgr);
    void alarmMsgProcess();
    void checkAllDevices();

    /* Looks up the session of a message and marks it as being delivered to; null when there is none. */
    CVeltaDevice* beginDelivery(const std::string& addr);
    void endDelivery();

    VXBase::CRWLock deviceLock_;
    std::map<std::string, CVeltaDevice*> devices_;        // guarded by deviceLock_
    std::map<std::string, VeltaDeviceLoop> deviceLoops_;  // guarded by deviceLock_; same keys

    xpr::xpr_mutex eventCallBackLock_;
    std::map<std::string, CVeltaDevice*> eventCallBacks_ XPR_GUARDED_BY(eventCallBackLock_);
    const CVeltaDevice* delivering_ XPR_GUARDED_BY(eventCallBackLock_) = nullptr;
    std::thread::id deliveryThread_ XPR_GUARDED_BY(eventCallBackLock_);
    std::condition_variable_any deliveryEnded_;

    xpr::xpr_mutex settingsLock_;
    std::string netZoneIp_ XPR_GUARDED_BY(settingsLock_);
    std::atomic<int> netZoneId_{-1};
    std::atomic<bool> eventTransmitCfg_{false};

    velta::LocalNetwork localNetwork_;

    std::mutex alarmQueueLock_;
    std::deque<std::string> alarmQueue_;     // guarded by alarmQueueLock_
    std::deque<std::string> takenMessages_;  // worker only; a member, since making one takes memory
    XPR_Semaphore alarmSemaphore_{};
    XPR_HANDLE worker_ = XPR_INVALID_HANDLE;

    std::atomic<int> onlineTimerId_{XPR_TIMER_INVALID};
    std::atomic<int> alarmStatusTimerId_{XPR_TIMER_INVALID};
    std::atomic<bool> onlineCheckBusy_{false};
    std::atomic<bool> running_{false};
    std::atomic<bool> stop_{false};  // set once, for good
};

#endif
