// What armed sessions cost a host: resident memory, threads, and the time that cancelling takes on a silent
// stream. The devices run in a process of their own, so that the figures are those of the host alone.
#include <sys/wait.h>
#include <unistd.h>
#include <veltasim/device.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <thread>

#include "plugin.h"

using Clock = std::chrono::steady_clock;

namespace {

constexpr int kSessions = 500;
constexpr int kCancels = 200;

/* Silent devices in a child process, until the parent closes its end of the pipe. */
class Devices {
 public:
    explicit Devices(int count) {
        int ports[2];
        int life[2];
        if (pipe(ports) != 0 || pipe(life) != 0) std::abort();
        child_ = fork();
        if (child_ == 0) {
            close(life[1]);
            run(count, ports[1], life[0]);
            _exit(0);
        }
        close(life[0]);
        life_ = life[1];
        for (int i = 0; i < count; ++i) {
            uint16_t port = 0;
            if (read(ports[0], &port, sizeof port) != sizeof port) std::abort();
            ports_.push_back(port);
        }
    }
    ~Devices() {
        close(life_);
        waitpid(child_, nullptr, 0);
    }
    Devices(const Devices&) = delete;
    Devices& operator=(const Devices&) = delete;

    const std::vector<uint16_t>& ports() const { return ports_; }

 private:
    static void run(int count, int ports, int life) {
        veltasim::raiseOpenFileLimit();
        std::vector<std::unique_ptr<veltasim::Device>> devices;
        for (int i = 0; i < count; ++i) {
            devices.push_back(
                std::make_unique<veltasim::Device>(veltasim::Options{.heartbeat = std::chrono::hours(1)}));
            devices.back()->start();
            const uint16_t port = devices.back()->port();
            if (write(ports, &port, sizeof port) != sizeof port) return;
        }
        char byte = 0;
        while (read(life, &byte, 1) > 0) {
        }
    }

    pid_t child_ = 0;
    int life_ = -1;
    std::vector<uint16_t> ports_;
};

/* A figure of /proc/self/status, such as "VmRSS" in KiB or "Threads". */
long statusFigure(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(name + ":", 0) == 0) return std::strtol(line.c_str() + name.size() + 1, nullptr, 10);
    }
    return -1;
}

struct Figures {
    long residentKiB = statusFigure("VmRSS");
    long threads = statusFigure("Threads");
};

double milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

void report(const char* what, double value, const char* unit) {
    std::printf("%-52s %12.2f %s\n", what, value, unit);
}

void measureCancel(host::Session& session, bool open) {
    std::vector<double> times;
    for (int i = 0; i < kCancels; ++i) {
        session.arm();
        if (open) std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const auto start = Clock::now();
        session.cancel();
        times.push_back(milliseconds(Clock::now() - start));
    }
    std::sort(times.begin(), times.end());
    const std::string what = open ? "cancel on a silent stream" : "cancel right after arming";
    report((what + ", median of 200").c_str(), times[times.size() / 2], "ms");
    report((what + ", worst of 200").c_str(), times.back(), "ms");
}

}  // namespace

int main() {
    veltasim::raiseOpenFileLimit();
    const Devices devices(kSessions);
    host::Library library;
    library.record->Init();
    const Figures started;
    std::vector<std::unique_ptr<host::Session>> sessions;
    for (const uint16_t port : devices.ports()) {
        sessions.push_back(std::make_unique<host::Session>(library));
        sessions.back()->connectTo(port);
    }
    std::fprintf(stderr, "waiting for the online check of %d sessions ...\n", kSessions);
    for (auto& session : sessions)
        session->waitForStatus(VELTA_STATUS_ONLINE);
    const Figures online;
    for (auto& session : sessions)
        session->arm();
    std::this_thread::sleep_for(std::chrono::seconds(3));
    const Figures armed;

    report("resident after Init", static_cast<double>(started.residentKiB), "KiB");
    report("resident with 500 sessions online", static_cast<double>(online.residentKiB), "KiB");
    report("resident with 500 sessions armed", static_cast<double>(armed.residentKiB), "KiB");
    report("resident for each armed session",
           static_cast<double>(armed.residentKiB - started.residentKiB) / kSessions, "KiB");
    report("threads after Init", static_cast<double>(started.threads), "");
    report("threads with 500 sessions armed", static_cast<double>(armed.threads), "");

    sessions[0]->cancel();
    measureCancel(*sessions[0], true);
    measureCancel(*sessions[0], false);

    const auto start = Clock::now();
    sessions.clear();
    report("destroying 500 armed sessions", milliseconds(Clock::now() - start), "ms");
    library.record->Uninit();
    return 0;
}
