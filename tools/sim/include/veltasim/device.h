// A simulated device that speaks VELTA over HTTP. Any number of them may live in one process.
//
//     veltasim::Device device;              // 127.0.0.1, free port, digest, admin / velta-sim-1
//     device.start();
//     client.connect(device.port(), ...);
//     ASSERT_TRUE(device.waitForStreams(1, 10s));
//     device.sendAccessEvent({.doorNo = 2, .picture = std::string(picture(PictureSize::Small))});
//
// Each device runs one thread of its own between start() and destruction. All member functions may be called
// from any thread, except from Options::onRequest; start() and destruction are the business of one owner.
// Strings are copied; the caller need not keep anything. A device needs about 7 file descriptors and one per
// connection: call raiseOpenFileLimit() before starting hundreds.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <veltasim/event.h>
#include <veltasim/fault.h>
#include <veltasim/options.h>
#include <veltasim/passage.h>
#include <veltasim/request.h>
#include <veltasim/view.h>

namespace veltasim {

// Lets this process open as many files as the system permits it.
void raiseOpenFileLimit();

class Device {
 public:
    explicit Device(Options options = {});
    ~Device();  // cuts all connections
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    // Opens the port and answers from then on. Throws std::system_error if the address cannot be had
    // (std::errc::address_in_use if another program listens there).
    void start();

    const Options& options() const;
    uint16_t port() const;    // stays the same through powerOff() and powerOn(); 0 before start()
    std::string url() const;  // "http://127.0.0.1:40123", no slash at the end

    // -- power --
    // Cuts every connection and refuses new ones. When it returns nothing is open any more. Time goes on for
    // the lock of the user; identity, faults and recorded requests are kept. With returnAfter the power comes
    // back by itself.
    void powerOff(std::optional<std::chrono::milliseconds> returnAfter = std::nullopt);
    void powerOn();  // answers again when it returns
    bool isOn() const;

    // -- alert streams --
    // Writes the event to the log, queues it for every present subscriber and returns its serial number, which
    // is counted up whether or not anybody listens. Never waits for a subscriber.
    uint64_t sendAccessEvent(const AccessEvent& event = {});
    void sendAlarm(const Alarm& alarm = {});
    void sendHeartbeat();
    // Exactly these bytes to every subscriber, in one write if the socket takes them.
    void sendRaw(std::string bytes);
    // Ends every stream: gracefully after what is queued, or at once in the middle of whatever is being sent.
    enum class StreamEnd { AfterQueue, AtOnce };
    void endStreams(StreamEnd how);

    size_t streamCount() const;  // subscribers now; those told "deployExceedMax" are none
    // True as soon as exactly `count` subscribers listen; false after the timeout.
    bool waitForStreams(size_t count, std::chrono::milliseconds timeout) const;
    // True once everything queued was handed to the sockets; false after the timeout.
    bool waitForDrained(std::chrono::milliseconds timeout) const;
    uint64_t lostEvents() const;  // events that a full queue refused, summed over subscribers

    // -- doors --
    // Somebody holds a card to a reader, or shows a face to it. The device judges, opens the door or not, and
    // reports the event. Throws std::invalid_argument if there is no such reader or the power is off.
    Passage presentCard(const std::string& cardNo, unsigned reader = 1);
    Passage presentFace(const std::string& employeeNo, unsigned reader = 1);
    bool doorIsOpen(unsigned door) const;  // false also if there is no such door
    // As a host does over the network: "open", "close" (which ends what holds the door), "alwaysOpen",
    // "alwaysClose". Throws std::invalid_argument as above, or if there is no such command.
    void commandDoor(unsigned door, const std::string& command);

    // -- faults --
    void setFault(const Fault& fault);  // in addition to those set; the oldest that fits a request strikes
    // All, or those of one kind; also cuts the connections that hang.
    void clearFaults(std::optional<FaultKind> kind = std::nullopt);
    std::vector<Fault> faults() const;  // those still in force; count is what is left of it

    // -- requests --
    std::vector<RequestRecord> requests() const;  // all recorded, oldest first
    // Without headers and bodies the newest of those recorded after that number, oldest first.
    std::vector<RequestRecord> requestsAfter(uint64_t number, size_t most) const;
    std::optional<RequestRecord> request(uint64_t number) const;  // nothing: it is not recorded any more
    void forgetRequests();
    // The first recorded request that fits, waiting for one if need be; nothing after the timeout. The
    // predicate runs on the calling thread, and must not call the device.
    using RequestPredicate = std::function<bool(const RequestRecord&)>;
    std::optional<RequestRecord> waitForRequest(const RequestPredicate& fits,
                                                std::chrono::milliseconds timeout) const;

    // -- views --
    Overview overview() const;
    // Those whose name, number or cards have the text in them (in any case of its letters): at most so many,
    // from the first-th match on.
    PersonPage persons(const std::string& text, size_t first, size_t most) const;
    std::string facePicture(const std::string& employeeNo) const;  // empty: none
    // The newest of those that came after that number, oldest first; a few hundred are kept.
    std::vector<Report> reportsAfter(uint64_t number, size_t most) const;

    // -- state --
    // What the device remembers of persons, cards, faces, fingers, doors, readers, schedules, event hosts and the
    // event log, with its name and zone, as JSON text; pictures are base64 in it.
    std::string saveState() const;
    // Replaces all that by such a text. Throws std::runtime_error that says where the text is wrong, and then
    // nothing has changed.
    void loadState(const std::string& json);
    std::string deviceName() const;
    void lockUser(std::chrono::seconds duration);  // as too many failed log-ins do
    void unlockUser();                             // also forgets failed log-ins
    bool isLocked() const;

    bool outputIsHigh(int output) const;            // false also if there is no such output
    void setProxyOnline(int channel, bool online);  // all are online at first

    // The clock goes on whether the power is on or off; at first it shows the time of this machine. The zone is
    // "CST-8:00:00" at first; any text is taken, and one that is no zone counts as UTC.
    std::chrono::sys_seconds deviceTime() const;
    void setDeviceTime(std::chrono::sys_seconds time);
    std::string timeZone() const;
    void setTimeZone(std::string zone);

    // -- scripted answers --
    // From now on exactly this answers requests of that method and path (without query), be it a resource of
    // the device or not. Log-in and faults are as ever.
    void setAnswer(const std::string& method, const std::string& path, int httpStatus, std::string body);
    void setDocument(const std::string& path, std::string body);  // what GET answers, with status 200
    void clearAnswers();

 private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace veltasim
