// Simulated devices in a child process, and the way to steer them.
#pragma once

#include <json/value.h>
#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#include "device_address.h"
#include "waiter.h"

namespace host {

class Simulator {
 public:
    // Starts the program and waits until its devices listen. Throws Failure.
    Simulator(const std::string& program, unsigned count, const std::string& password, Waiter& waiter);
    ~Simulator();  // ends the child
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    const std::vector<DeviceAddress>& devices() const { return devices_; }
    // The control interface: POST with a body, GET without; path: "/event?device=0". Throws Failure.
    Json::Value control(const std::string& path, const Json::Value& body = Json::nullValue) const;

 private:
    void start(const std::vector<std::string>& arguments);
    void readAddresses(unsigned count, Waiter& waiter);
    void end();

    std::unique_ptr<Fd> output_;
    pid_t child_ = -1;
    std::vector<DeviceAddress> devices_;
    std::string control_;  // URL
};

}  // namespace host
