/* A device without a network: it stands in the place of the HTTP client library and answers from an input. */
#ifndef VELTA_FUZZ_FAKE_DEVICE_H
#define VELTA_FUZZ_FAKE_DEVICE_H

#include <cstdint>
#include <string>
#include <vector>

#include "device/CVeltaDevice.h"
#include "support.h"

namespace fuzz {

struct DeviceAnswer {
    uint32_t httpStatus = 200; /* 0: no answer */
    std::string body;
};

/* The answers in the rest of an input, one part each: "2" for HTTP status 200, "4" 401, "5" 503, anything else
 * for no answer; then the body. */
std::vector<DeviceAnswer> answersIn(Input& input);

/* What the device answers from now on. The last answer stays; without any there is none. */
void setAnswers(std::vector<DeviceAnswer> answers);

/* The exchanges since setAnswers. */
size_t exchanges();

/* Connects a session to the device, with more items for its URL, and has it found online. */
void connect(CVeltaDevice& device, const std::string& items = "");
void goOnline(CVeltaDevice& device);

}  // namespace fuzz

#endif
