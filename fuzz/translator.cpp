// Requests that are translated, from both sides: the host's body and what the device answers.
//
// Input: the position of a route, whether the session is online, the host's body, the device's answers.

#include <iterator>

#include "fake_device.h"
#include "gateway/JsonText.h"
#include "routes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const fuzz::Route& route = fuzz::kRoutes[input.byte() % std::size(fuzz::kRoutes)];
    CVeltaDevice device;
    fuzz::connect(device);
    if (input.byte() % 2 != 0) fuzz::goOnline(device);

    velta::HostRequest request{route.method, std::string(route.path) + "?format=json", {}};
    request.body.text = input.part();
    fuzz::setAnswers(fuzz::answersIn(input));
    std::string answer;
    fuzz::require(device.DealwithCommOpt(request, answer).has_value(), "the gateway has this route");
    return 0;
}
