// Recorded streams of events on their way to those who listen.
#pragma once

#include <map>

#include <veltasim/recording.h>

#include "loop.h"
#include "outlets.h"
#include "replay/left_out.h"

namespace veltasim {

// [loop thread]
class StreamPlayer {
 public:
    // speed: 2 plays twice as fast as it was recorded.
    StreamPlayer(Loop& loop, Outlets& outlets, double speed)
        : loop_(loop), outlets_(outlets), speed_(speed) {}

    // Sends the parts one after the other, and then nothing; events that name `from` name the device instead.
    void open(Exchange& exchange, const RecordedAnswer& stream, const DeviceEnd& from, uint16_t port);

 private:
    struct Playing {
        const RecordedAnswer& stream;
        const DeviceEnd from;
        const DeviceEnd to;
        size_t next = 0;  // part
        Loop::TimerId timer{};
    };

    void wait(Outlets::Id id, Playing& playing);
    void send(Outlets::Id id);

    Loop& loop_;
    Outlets& outlets_;
    const double speed_;
    std::map<Outlets::Id, Playing> playing_;
};

}  // namespace veltasim
