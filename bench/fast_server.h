// A device that costs next to nothing: the fast side of every comparison. It runs in a child process, so that figures
// of the process that measures are those of the host alone.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace bench {

constexpr const char* kUser = "admin";
constexpr const char* kPassword = "velta-sim-1";

/* The address of device number i: each has an address of its own, all share one port and one listening socket. */
std::string addressOf(int device);

constexpr int kWatched = 250; /* devices whose checks are timed */

class FastServer {
 public:
    /* Starts the child; call it while the process has one thread. */
    FastServer();
    ~FastServer();
    FastServer(const FastServer&) = delete;
    FastServer& operator=(const FastServer&) = delete;

    uint16_t port() const { return port_; }
    pid_t process() const { return child_; }
    /* A port that answers no attempt to connect, like the address of a device that is gone. */
    uint16_t deadPort() const { return deadPort_; }
    /* Alert streams that are open now. */
    uint32_t streams() const { return shared_->streams; }
    /* Online checks that were answered so far. */
    uint32_t checks() const { return shared_->checks; }
    /* Nanoseconds between the first and the second online check of one of the first devices; 0 before. */
    int64_t betweenChecks(int device) const;
    /* Sends one event on every open stream. The last KiB of an event goes out when the rest has been read. */
    void emit(uint32_t pictureBytes);
    /* When the last bytes of the last event went out: nanoseconds of the monotonic clock. */
    int64_t lastByteSentAt() const { return shared_->lastByteSentAt; }

    struct Shared {
        std::atomic<uint32_t> streams;
        std::atomic<uint32_t> checks;
        std::atomic<int64_t> lastByteSentAt;
        std::atomic<int64_t> checkedAt[kWatched][2];
    };

 private:
    void block();

    Shared* shared_;
    pid_t child_ = 0;
    int orders_ = -1;
    uint16_t port_ = 0;
    uint16_t deadPort_ = 0;
    int deadSockets_[2] = {-1, -1};
};

/* The JSON of an event as the server sends it, for a device at address. */
std::string eventJson(const std::string& address, uint16_t port, bool withPicture);

/* What the server answers to a request for path. */
const std::string& answerTo(const std::string& path);

int64_t now();

}  // namespace bench
