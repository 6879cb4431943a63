/* What the fuzz targets share: inputs that are taken apart, and promises that no input may break. */
#ifndef VELTA_FUZZ_SUPPORT_H
#define VELTA_FUZZ_SUPPORT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/* The one function of a target, which libFuzzer or replay_main.cpp calls with each input. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fuzz {

/* Stands between the parts of an input; documents do not hold it. */
constexpr char kSeparator = '\x1e';

/* An input, read from its start. Behind its end there are zeros and empty parts. */
class Input {
 public:
    Input(const uint8_t* data, size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

    uint8_t byte() {
        if (rest_.empty()) return 0;
        const auto first = static_cast<uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return first;
    }
    /* Up to the next separator, which is dropped. */
    std::string part() {
        const std::string_view part = rest_.substr(0, rest_.find(kSeparator));
        rest_.remove_prefix(std::min(part.size() + 1, rest_.size()));
        return std::string(part);
    }
    std::string_view rest() const { return rest_; }
    bool atEnd() const { return rest_.empty(); }

 private:
    std::string_view rest_;
};

/* Ends the process when a promise is broken, which keeps the input. */
void require(bool kept, const char* promise);

}  // namespace fuzz

#endif
