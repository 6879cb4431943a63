#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <list>
#include <mutex>
#include <optional>
#include <thread>

#include <veltasim/hostile.h>

#include "hostile_reply.h"
#include "hostile_tricks.h"
#include "hostile_wire.h"
#include "listener.h"

namespace veltasim {
namespace {

constexpr size_t kMostRecorded = 4096;
constexpr size_t kBlock = 65536;  // of what goes out again and again

// Tempts a client to tell the other host its credentials.
constexpr Trick kOtherHost{
    .name = "",
    .meaning = "",
    .answer = "{401}{digest}\r\nWWW-Authenticate: Basic realm=\"door\"\r\n{length}<answer/>",
    .end = End::GoOn};

struct Worker {
    std::atomic<bool> done{false};
    std::jthread thread;
};

bool hear(HostileWire& wire, Ear ear, HostileReply& reply) {
    if (ear == Ear::Nothing) return true;
    if (!wire.readUntil("\r\n", reply.head)) return false;
    if (ear == Ear::RequestLine && !reply.asksForUser()) return true;
    if (!wire.readUntil("\r\n\r\n", reply.head)) return false;
    return ear == Ear::Head || wire.skip(reply.bodyLength());
}

bool say(HostileWire& wire, const Trick& trick, const HostileReply& reply) {
    const bool again = !trick.manner.answerToLogIn.empty() && reply.carriesCredentials();
    const std::string answer = reply.fill(again ? trick.manner.answerToLogIn : trick.answer);
    if (trick.manner.bytePause.count() > 0) return wire.sendSlowly(answer, trick.manner.bytePause);
    if (!wire.send(answer)) return false;
    if (trick.manner.more.empty()) return true;
    const bool forEver = trick.manner.times == Manner::kForEver;
    std::string block;
    for (size_t i = 0; forEver ? block.size() < kBlock : i < trick.manner.times; ++i)
        block += trick.manner.more;
    do {
        if (!wire.send(block)) return false;
    } while (forEver);
    return true;
}

}  // namespace

class HostileDevice::Impl {
 public:
    Impl(std::string_view trick, uint16_t port, std::string address)
        : trick_(&trickNamed(trick)), wantedPort_(port), address_(std::move(address)) {}
    ~Impl() {
        if (!acceptor_.joinable()) return;
        eventfd_write(stop_.get(), 1);
        acceptor_.join();
    }

    void start() {
        listeners_[0].emplace(address_, wantedPort_);
        listeners_[1].emplace(address_, 0);
        acceptor_ = std::thread([this] { acceptAll(); });
    }
    uint16_t port() const { return listeners_[0] ? listeners_[0]->port() : 0; }
    void setTrick(std::string_view name) { trick_ = &trickNamed(name); }
    uint64_t connections() const { return connections_; }
    uint64_t openConnections() const { return open_; }
    uint64_t bytesSent() const { return sent_; }
    std::vector<std::string> requests(bool elsewhere) const {
        const std::lock_guard guard(mutex_);
        return heads_[elsewhere];
    }

 private:
    void acceptAll();
    void serve(Fd socket, bool elsewhere) noexcept;
    bool serveRequest(HostileWire& wire, const Trick& trick, bool elsewhere);
    void record(const std::string& head, bool elsewhere);

    std::atomic<const Trick*> trick_;
    const uint16_t wantedPort_;
    const std::string address_;
    const Fd stop_{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::array<std::optional<Listener>, 2> listeners_;  // this host and the other one
    std::atomic<uint64_t> connections_{0};
    std::atomic<uint64_t> open_{0};
    std::atomic<uint64_t> sent_{0};
    mutable std::mutex mutex_;
    std::array<std::vector<std::string>, 2> heads_;
    std::thread acceptor_;
};

void HostileDevice::Impl::acceptAll() {
    std::list<Worker> workers;
    const std::array<Fd, 2> doors{listeners_[0]->accepting(), listeners_[1]->accepting()};
    std::array<pollfd, 3> files{
        {{doors[0].get(), POLLIN, 0}, {doors[1].get(), POLLIN, 0}, {stop_.get(), POLLIN, 0}}};
    while (files[2].revents == 0) {
        poll(files.data(), files.size(), -1);
        for (const bool elsewhere : {false, true}) {
            Fd socket(accept4(doors[elsewhere].get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
            if (socket.get() < 0) continue;
            ++open_;
            ++connections_;
            try {
                Worker& worker = workers.emplace_back();
                worker.thread = std::jthread([this, elsewhere, &worker, own = std::move(socket)]() mutable {
                    serve(std::move(own), elsewhere);
                    --open_;
                    worker.done = true;
                });
            } catch (const std::exception&) {  // no memory or no thread: the connection ends
                --open_;
            }
        }
        std::erase_if(workers, [](const Worker& w) { return w.done || !w.thread.joinable(); });
    }
}

void HostileDevice::Impl::serve(Fd socket, bool elsewhere) noexcept {
    HostileWire wire(std::move(socket), stop_.get(), sent_);
    const Trick& trick = elsewhere ? kOtherHost : *trick_.load();
    try {
        while (serveRequest(wire, trick, elsewhere)) {
        }
    } catch (const std::exception&) {  // no memory: the connection ends
    }
}

// False when the connection is over.
bool HostileDevice::Impl::serveRequest(HostileWire& wire, const Trick& trick, bool elsewhere) {
    HostileReply reply{"", wire.addressWith(listeners_[0]->port()), wire.addressWith(listeners_[1]->port())};
    const bool heard = hear(wire, trick.manner.ear, reply);
    if (!reply.head.empty()) record(reply.head, elsewhere);
    if (!heard) return false;
    const Trick& played = reply.asksForUser() ? trickNamed("none") : trick;
    if (!say(wire, played, reply)) return false;
    if (played.end == End::Hang) wire.waitUntilPeerLeaves();
    if (played.end == End::Reset) wire.resetAtClose();
    return played.end == End::GoOn;
}

void HostileDevice::Impl::record(const std::string& head, bool elsewhere) {
    const std::lock_guard guard(mutex_);
    if (heads_[elsewhere].size() < kMostRecorded) heads_[elsewhere].push_back(head);
}

std::vector<HostileTrick> hostileTricks() {
    std::vector<HostileTrick> tricks;
    for (const Trick& trick : allTricks())
        tricks.push_back({trick.name, trick.meaning});
    return tricks;
}

HostileDevice::HostileDevice(std::string_view trick, uint16_t port, std::string bindAddress)
    : impl_(std::make_unique<Impl>(trick, port, std::move(bindAddress))) {}
HostileDevice::~HostileDevice() = default;

void HostileDevice::start() {
    impl_->start();
}
uint16_t HostileDevice::port() const {
    return impl_->port();
}
void HostileDevice::setTrick(std::string_view trick) {
    impl_->setTrick(trick);
}
uint64_t HostileDevice::connections() const {
    return impl_->connections();
}
uint64_t HostileDevice::openConnections() const {
    return impl_->openConnections();
}
uint64_t HostileDevice::bytesSent() const {
    return impl_->bytesSent();
}
std::vector<std::string> HostileDevice::requests() const {
    return impl_->requests(false);
}
std::vector<std::string> HostileDevice::requestsElsewhere() const {
    return impl_->requests(true);
}

}  // namespace veltasim
