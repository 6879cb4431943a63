// Answers requests as a recorded device did.
#pragma once

#include <veltasim/options.h>

#include "replay/player.h"
#include "replay/stream_player.h"

namespace veltasim {

// [loop thread]
class Replay {
 public:
    Replay(const Options& options, Loop& loop, Outlets& outlets);

    // Answers, and returns the HTTP status; 0: none, the connection ends. port: of the device.
    int answer(Exchange& exchange, uint16_t port);

 private:
    const Options& options_;
    Outlets& outlets_;
    Player player_;
    StreamPlayer streams_;
};

}  // namespace veltasim
