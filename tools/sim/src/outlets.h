#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "http_server.h"
#include "loop.h"

namespace veltasim {

// Bytes to write to a connection, and how.
struct Chunk {
    enum class Ending { Continue, Silence, Cut };

    std::shared_ptr<const std::string> bytes;
    int64_t bytesPerSecond = 0;        // 0: as fast as they go
    Ending ending = Ending::Continue;  // what becomes of the connection after these bytes

    Chunk(std::string text) : bytes(std::make_shared<const std::string>(std::move(text))) {}
};

// Connections that were taken from the HTTP server: each has a queue of chunks, written as fast as its client
// reads. A connection that its client closes is closed at once.
class Outlets {
 public:
    using Id = uint64_t;
    using OnClosed = std::function<void(Id)>;

    Outlets(Loop& loop, size_t maxChunks, size_t maxBytes)
        : loop_(loop), maxChunks_(maxChunks), maxBytes_(maxBytes) {}

    // [loop thread] Takes the connection over. onClosed is called on the loop's thread when it is gone.
    Id open(Exchange& exchange, OnClosed onClosed = nullptr);
    // [any thread] False: the queue is full, or the connection is closed or ends with what is queued.
    bool push(Id id, Chunk chunk);
    // [any thread] True once nothing is left to write, except on connections fallen silent.
    bool waitForDrained(std::chrono::milliseconds timeout) const;

    // [loop thread]
    void cut(Id id);
    void cutAll();
    void cutSilent();

 private:
    struct Outlet {
        Exchange* exchange;
        OnClosed onClosed;
        int socket;
        std::deque<Chunk> queue;
        size_t queuedBytes = 0;
        size_t written = 0;    // of the front chunk
        bool ending = false;   // the last chunk has been queued
        bool silent = false;   // after the last chunk
        bool blocked = false;  // its client does not read as fast as we write
        bool pausing = false;  // until the timer lets the next bytes go
        Loop::TimerId timer{};
    };
    enum class Progress { Done, Blocked, Cut };
    using Map = std::map<Id, Outlet>;

    void flush();
    void write(Id id);
    Progress writeQueue(Id id, Outlet& outlet);
    void resume(Id id);
    template <typename Predicate>
    void cutIf(Predicate predicate);

    Loop& loop_;
    const size_t maxChunks_;
    const size_t maxBytes_;
    mutable std::mutex mutex_;
    mutable std::condition_variable drained_;
    Map outlets_;            // guarded by mutex_; elements are added and removed by the loop's thread only
    std::vector<Id> dirty_;  // guarded by mutex_; those with new chunks
    Id lastId_ = 0;          // guarded by mutex_
};

}  // namespace veltasim
