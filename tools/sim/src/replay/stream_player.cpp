#include "replay/stream_player.h"

#include <algorithm>

namespace veltasim {
namespace {

// However fast a recording is played, what came apart goes out apart.
constexpr std::chrono::duration<double, std::milli> kShortestPause(20);

}  // namespace

void StreamPlayer::open(Exchange& exchange, const RecordedAnswer& stream, const DeviceEnd& from,
                        uint16_t port) {
    const DeviceEnd to{exchange.localAddress(), port};
    const Outlets::Id id = outlets_.open(exchange, [this](Outlets::Id gone) {
        const auto found = playing_.find(gone);
        if (found == playing_.end()) return;
        loop_.cancel(found->second.timer);
        playing_.erase(found);
    });
    outlets_.push(id, Chunk("HTTP/1.1 200 OK\r\nContent-Type: " + stream.contentType +
                            "\r\nConnection: close\r\n\r\n"));
    wait(id, playing_.emplace(id, Playing{stream, from, to}).first->second);
}

void StreamPlayer::wait(Outlets::Id id, Playing& playing) {
    const auto& parts = playing.stream.parts;
    if (playing.next == parts.size()) return;
    const auto before = playing.next == 0 ? std::chrono::milliseconds(0) : parts[playing.next - 1].time;
    const std::chrono::duration<double, std::milli> recorded = parts[playing.next].time - before;
    const auto pause = std::max(recorded / speed_, std::min(recorded, kShortestPause));
    playing.timer =
        loop_.after(std::chrono::duration_cast<Loop::Clock::duration>(pause), [this, id] { send(id); });
}

void StreamPlayer::send(Outlets::Id id) {
    Playing& playing = playing_.at(id);
    const RecordedAnswer::Part& part = playing.stream.parts[playing.next++];
    outlets_.push(id, Chunk(readdressed(part.bytes, playing.from, playing.to)));
    wait(id, playing);
}

}  // namespace veltasim
