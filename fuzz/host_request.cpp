// Envelopes of hosts, as the gateway gets them, with the device's answers to what it sends.
//
// Input: the size of the host's buffer, the envelope, the device's answers.

#include <cstring>
#include <memory>

#include "fake_device.h"

namespace {

constexpr unsigned kBufferSizes[] = {4096, 0, 1, 50};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const unsigned room = kBufferSizes[input.byte() % std::size(kBufferSizes)];
    std::string request = input.part();
    CVeltaDevice device;
    fuzz::connect(device);
    fuzz::setAnswers(fuzz::answersIn(input));
    const std::unique_ptr<char[]> response(new char[room]);
    const int result = device.VELTA_Getway(request.data(), response.get(), room, nullptr);
    fuzz::require(result == VELTA_OK, "the gateway's result is always 0");
    fuzz::require(room == 0 || std::memchr(response.get(), '\0', room) != nullptr, "an answer is terminated");
    return 0;
}
