// A host in C++: loads the plug-in, connects to a device, prints its events, sends one request.
//
//     VELTA_PASSWORD=... velta-example-cpp LIBRARY ADDRESS PORT USER [EVENTS]
//
// Ends after EVENTS events (1).

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>
#include <velta/host.hpp>

namespace {

using namespace std::chrono_literals;
using velta::host::Device;
using velta::host::Error;
using velta::host::Event;
using velta::host::Library;

// What the plug-in's threads tell the main thread.
class Counter {
 public:
    void add() {
        const std::lock_guard guard(mutex_);
        ++count_;
        grown_.notify_all();
    }
    bool waitFor(int wanted, std::chrono::seconds time) {
        std::unique_lock guard(mutex_);
        return grown_.wait_for(guard, time, [&] { return count_ >= wanted; });
    }

 private:
    std::mutex mutex_;
    std::condition_variable grown_;
    int count_ = 0;  // guarded by mutex_
};

// The plug-in logs in to its devices every 15 seconds.
void waitUntilOnline(const Device& device) {
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (device.status() == VELTA_STATUS_UNKNOWN && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(100ms);
    if (device.status() != VELTA_STATUS_ONLINE) throw Error("the device is not online");
}

void print(const Event& event) {
    std::cout << "event  " << event.record.dateTime << "  " << event.sourceId << "  " << event.jpeg().size()
              << " bytes of picture  " << event.payload() << std::endl;
}

void run(char** arguments, const std::string& password, int wanted) {
    Library library(arguments[1]);
    std::cout << "plug-in " << library.version() << std::endl;
    library.passEvents(true);

    Counter events;  // stands before the device, whose handlers use it until the device is gone
    Device device(library);
    device.onStatus([](int status, const std::string& info) {
        std::cout << "status " << status << ' ' << info << std::endl;
    });
    device.connect(arguments[2], static_cast<uint16_t>(std::stoi(arguments[3])), arguments[4], password);
    waitUntilOnline(device);

    device.startEvents([&events](const Event& event) {
        print(event);
        events.add();
    });
    if (!events.waitFor(wanted, 60s)) throw Error("no event came");
    device.stopEvents();

    std::cout << "answer " << device.request("GET", "/VELTA/System/deviceInfo?format=json") << std::endl;
}

}  // namespace

int main(int count, char** arguments) {
    const char* const password = std::getenv("VELTA_PASSWORD");
    const int wanted = count == 6 ? std::atoi(arguments[5]) : 1;
    if (count < 5 || count > 6 || wanted < 1 || password == nullptr) {
        std::cerr << "usage: VELTA_PASSWORD=... velta-example-cpp LIBRARY ADDRESS PORT USER [EVENTS]\n";
        return 2;
    }
    try {
        run(arguments, password, wanted);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "velta-example-cpp: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
