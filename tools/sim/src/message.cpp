#include "message.h"

namespace veltasim {

Chunk toChunk(Message message, const std::optional<Fault>& fault) {
    const auto is = [&fault](FaultKind kind) { return fault && fault->kind == kind; };
    if (is(FaultKind::MalformedBody)) message.body.resize(message.body.size() / 2);

    const int64_t lie = is(FaultKind::WrongLength) ? fault->amount : 0;
    std::string text = message.head +
                       "Content-Length: " + std::to_string(static_cast<int64_t>(message.body.size()) + lie) +
                       "\r\n\r\n";
    if (is(FaultKind::HangMidway) || is(FaultKind::Drop)) {
        Chunk half(text + message.body.substr(0, message.body.size() / 2));
        half.ending = is(FaultKind::Drop) ? Chunk::Ending::Cut : Chunk::Ending::Silence;
        return half;
    }
    Chunk whole(text + message.body + message.tail);
    if (is(FaultKind::SlowBytes)) whole.bytesPerSecond = fault->amount;
    return whole;
}

}  // namespace veltasim
