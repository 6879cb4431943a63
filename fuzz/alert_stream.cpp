// Alert streams, from the bytes that arrive to the host's event records.
//
// Input: the number of chunk sizes, the sizes, which repeat, the stream with its response headers.

#include <algorithm>
#include <vector>

#include "device/AlertStreamParser.h"
#include "event_host.h"
#include "support.h"

namespace {

constexpr size_t kMaxSizes = 8;
constexpr size_t kFineSizes = 128;  // up to here a byte is a size, above it counts steps
constexpr size_t kStep = 128;

size_t chunkSize(uint8_t byte) {
    return byte < kFineSizes ? byte + size_t{1} : (byte - kFineSizes + 1) * kStep;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    std::vector<size_t> sizes(1 + input.byte() % kMaxSizes);
    for (size_t& chunk : sizes)
        chunk = chunkSize(input.byte());

    velta::AlertStreamParser parser(
        [](const std::string& message) { fuzz::EventHost::instance().deliver(message); });
    std::string_view stream = input.rest();
    const auto feed = [&](size_t length) {
        const std::string chunk(stream.substr(0, length));  // on its own, as it comes from the network
        parser.feed(chunk);
        stream.remove_prefix(chunk.size());
    };
    // Response headers come one line at a time.
    for (bool isHead = true; isHead && !stream.empty();) {
        const size_t end = stream.find("\r\n");
        isHead = end != 0 && end != std::string_view::npos;
        feed(end == std::string_view::npos ? stream.size() : end + 2);
    }
    for (size_t position = 0; !stream.empty(); ++position)
        feed(sizes[position % sizes.size()]);
    fuzz::require(parser.buffered() <= size, "no more is kept than came");
    return 0;
}
