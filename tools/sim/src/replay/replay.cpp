#include "replay/replay.h"

#include "status.h"

namespace veltasim {

Replay::Replay(const Options& options, Loop& loop, Outlets& outlets)
    : options_(options),
      outlets_(outlets),
      player_(*options.recording),
      streams_(loop, outlets, options.replaySpeed) {}

int Replay::answer(Exchange& exchange, uint16_t port) {
    const RecordedAnswer* recorded = player_.next(exchange.record);
    if (recorded == nullptr) {
        if (options_.onUnrecorded) options_.onUnrecorded(exchange.record);
        const Reply reply = statusReply(exchange.record.target, MHD_HTTP_NOT_FOUND, kNotSupported);
        exchange.answer(reply);
        return reply.status;
    }
    if (recorded->status == 0) {
        Chunk nothing("");
        nothing.ending = Chunk::Ending::Cut;
        outlets_.push(outlets_.open(exchange), nothing);
    } else if (recorded->isStream) {
        streams_.open(exchange, *recorded, {options_.recording->address, options_.recording->port}, port);
    } else {
        exchange.answer({recorded->status, recorded->contentType, recorded->body});
    }
    return recorded->status;
}

}  // namespace veltasim
