#include "outlets.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>

namespace veltasim {
namespace {

constexpr uint32_t kGone = EPOLLRDHUP;  // EPOLLHUP and EPOLLERR come unasked

}  // namespace

Outlets::Id Outlets::open(Exchange& exchange, OnClosed onClosed) {
    const int fd = exchange.socket();
    const int off = 0;
    const int on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_CORK, &off, sizeof off);
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    Id id = 0;
    {
        const std::lock_guard lock(mutex_);
        id = ++lastId_;
    }
    loop_.watch(fd, kGone, [this, id](uint32_t events) {
        if (events & (EPOLLRDHUP | EPOLLHUP | EPOLLERR))
            cut(id);
        else
            write(id);
    });
    exchange.takeOver();
    const std::lock_guard lock(mutex_);
    Outlet& outlet = outlets_[id];
    outlet.exchange = &exchange;
    outlet.socket = fd;
    outlet.onClosed = std::move(onClosed);
    return id;
}

bool Outlets::push(Id id, Chunk chunk) {
    bool first = false;
    {
        const std::lock_guard lock(mutex_);
        const auto found = outlets_.find(id);
        if (found == outlets_.end() || found->second.ending) return false;
        Outlet& outlet = found->second;
        const size_t size = chunk.bytes->size();
        const bool full = outlet.queue.size() >= maxChunks_ || outlet.queuedBytes + size > maxBytes_;
        if (full && !outlet.queue.empty() && chunk.ending == Chunk::Ending::Continue) return false;
        outlet.ending = chunk.ending != Chunk::Ending::Continue;
        outlet.silent = chunk.ending == Chunk::Ending::Silence;
        outlet.queuedBytes += size;
        outlet.queue.push_back(std::move(chunk));
        first = dirty_.empty();
        dirty_.push_back(id);
    }
    if (first) loop_.post([this] { flush(); });
    return true;
}

bool Outlets::waitForDrained(std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return drained_.wait_for(lock, timeout, [this] {
        return std::all_of(outlets_.begin(), outlets_.end(),
                           [](const Map::value_type& entry) { return entry.second.queue.empty(); });
    });
}

void Outlets::flush() {
    std::vector<Id> dirty;
    {
        const std::lock_guard lock(mutex_);
        dirty.swap(dirty_);
    }
    for (const Id id : dirty)
        write(id);
}

void Outlets::write(Id id) {
    Progress progress = Progress::Done;
    {
        const std::lock_guard lock(mutex_);
        const auto found = outlets_.find(id);
        if (found == outlets_.end()) return;
        progress = writeQueue(id, found->second);
        if (found->second.queue.empty()) drained_.notify_all();
        const bool blocked = progress == Progress::Blocked;
        if (blocked != found->second.blocked) {
            found->second.blocked = blocked;
            loop_.rewatch(found->second.socket, blocked ? kGone | EPOLLOUT : kGone);
        }
    }
    if (progress == Progress::Cut) cut(id);
}

Outlets::Progress Outlets::writeQueue(Id id, Outlet& outlet) {
    using std::chrono::milliseconds;
    while (!outlet.queue.empty() && !outlet.pausing) {
        const Chunk& chunk = outlet.queue.front();
        size_t size = chunk.bytes->size() - outlet.written;
        if (chunk.bytesPerSecond > 0)
            size = std::min(size, static_cast<size_t>(std::max<int64_t>(chunk.bytesPerSecond / 10, 1)));
        if (size > 0) {
            const ssize_t sent =
                send(outlet.socket, chunk.bytes->data() + outlet.written, size, MSG_NOSIGNAL | MSG_DONTWAIT);
            if (sent < 0) return errno == EAGAIN ? Progress::Blocked : Progress::Cut;
            outlet.written += static_cast<size_t>(sent);
            if (chunk.bytesPerSecond > 0) {
                const milliseconds pause(1000 * sent / chunk.bytesPerSecond);
                outlet.pausing = true;
                outlet.timer = loop_.after(pause, [this, id] { resume(id); });
            }
        }
        if (outlet.written < chunk.bytes->size()) continue;
        const Chunk::Ending ending = chunk.ending;
        outlet.queuedBytes -= chunk.bytes->size();
        outlet.written = 0;
        outlet.queue.pop_front();
        if (ending == Chunk::Ending::Cut) return Progress::Cut;
    }
    return Progress::Done;
}

void Outlets::resume(Id id) {
    {
        const std::lock_guard lock(mutex_);
        outlets_.at(id).pausing = false;
    }
    write(id);
}

void Outlets::cut(Id id) {
    Map::node_type node;
    {
        const std::lock_guard lock(mutex_);
        node = outlets_.extract(id);
        if (node.empty()) return;
        drained_.notify_all();
    }
    Outlet& outlet = node.mapped();
    if (outlet.pausing) loop_.cancel(outlet.timer);
    loop_.unwatch(outlet.socket);
    outlet.exchange->giveBack();
    if (outlet.onClosed) outlet.onClosed(id);
}

template <typename Predicate>
void Outlets::cutIf(Predicate predicate) {
    std::vector<Id> ids;
    {
        const std::lock_guard lock(mutex_);
        for (const auto& [id, outlet] : outlets_) {
            if (predicate(outlet)) ids.push_back(id);
        }
    }
    for (const Id id : ids)
        cut(id);
}

void Outlets::cutAll() {
    cutIf([](const Outlet&) { return true; });
}

void Outlets::cutSilent() {
    cutIf([](const Outlet& outlet) { return outlet.silent; });
}

}  // namespace veltasim
