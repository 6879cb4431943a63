// An HTTP interface for programs that want to steer simulated devices from outside; loopback only, no log-in.
//
//     GET    /control/devices            all devices: url, streams, power, lock, clock, outputs that are high, doors
//                                        that are open
//     GET    /control/overview           all that a device shows of itself: doors, subscribers, faults, counts
//     GET    /control/persons?search=ada persons by name, number or card; &first=N: from the N-th match on
//     GET    /control/events?after=N     the last events that went out, alarms too, without pictures
//     GET    /control/requests?after=N   the recorded requests, those with a greater number than N
//     GET    /control/request?number=N   one of them
//     DELETE /control/requests           forgets them
//     GET    /control/faults             the faults in force
//     POST   /control/fault              {"kind":"slow","amount":100,"path":"/VELTA/System","count":3}
//     DELETE /control/fault              {"kind":"slow"}: ends those of a kind
//     DELETE /control/faults             ends all faults
//     POST   /control/event              {"doorNo":2,"name":"...","picture":"small|medium|large","count":5}:
//                                        all members as in AccessEvent; with "eventType" an Alarm
//     POST   /control/card               {"cardNo":"0123456789","reader":1}: somebody holds a card to a reader; the
//                                        answer says "granted" and the "outcome"; reader 1 if it is missing
//     POST   /control/face               {"employeeNo":"1001","reader":1}: somebody shows a face
//     POST   /control/door               {"doorNo":1,"command":"open|close|alwaysOpen|alwaysClose"}
//     POST   /control/power              {"on":false,"seconds":5}; without "seconds" until it is switched on
//     POST   /control/streams            {"end":"at-once"} or {"end":"after-queue"}
//     POST   /control/lock               {"seconds":60}; 0 unlocks
//     POST   /control/clock              {"time":1767225600,"timeZone":"CST-1:00:00"}, both or one; seconds since
//                                        1970 in UTC
//     POST   /control/answer             {"path":"/VELTA/...","method":"GET","status":200,"body":"..."}: answers so
//                                        from now on; all but the path may be missing
//     DELETE /control/answers            ends all scripted answers
//
// Requests may name one device by its index, in the query ("?device=1"). Without it GET, card,
// face and door mean device 0 and the others mean all. Errors are answered 4xx with {"error":"..."}. Pages of
// other sites that a browser shows are refused.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <veltasim/device.h>

namespace veltasim {

class ControlServer {
 public:
    // Listens on 127.0.0.1:port (0: the system picks one) until destroyed. The devices must outlive it.
    // Throws std::system_error if the port cannot be had.
    ControlServer(std::vector<Device*> devices, uint16_t port);
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    uint16_t port() const;
    std::string url() const;  // "http://127.0.0.1:40124"

 private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace veltasim
