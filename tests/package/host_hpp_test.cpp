// The C++ face of the contract, with the built library behind it.
#include <gtest/gtest.h>
#include <veltasim/device.h>

#include <chrono>
#include <future>
#include <velta/host.hpp>

#include "../wait.h"

using namespace std::chrono_literals;
using velta::host::Device;
using velta::host::Error;
using velta::host::Event;
using velta::host::Library;

namespace {

constexpr auto kDeadline = 120s;
constexpr const char* kDeviceInfo = "/VELTA/System/deviceInfo";

uint32_t codeOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Error& error) {
        return error.code();
    }
    return VELTA_OK;
}

bool waitOnline(const Device& device) {
    return velta_test::waitUntil([&] { return device.status() == VELTA_STATUS_ONLINE; });
}

TEST(HostHeader, AnswersAreWholeOrThrow) {
    EXPECT_THROW(Library("/nowhere/libveltadev.so"), Error);
    EXPECT_THROW(Library("libc.so.6"), Error);
    veltasim::Device sim;
    sim.start();
    Library library(VELTADEV_PATH);
    Device device(library);
    for (const char* address : {"", "127.0.0.1;Port=1"})
        EXPECT_EQ(codeOf([&] { device.connect(address, 80, "admin", "x"); }), VELTA_E_BAD_PARAMETER);
    EXPECT_EQ(codeOf([&] { device.startEvents([](const Event&) {}); }), VELTA_E_OFFLINE);
    device.connect("127.0.0.1", sim.port(), "admin", "velta-sim-1");

    const std::string whole = device.request("GET", kDeviceInfo);
    EXPECT_NE(whole.find("</DeviceInfo>"), std::string::npos) << whole;
    const auto size = static_cast<unsigned>(whole.size());
    for (const unsigned room : {0U, 1U, size, size + 1})
        EXPECT_EQ(device.request("GET", kDeviceInfo, "", room), whole) << room;
    EXPECT_EQ(device.inventory().back(), '}');

    std::string renamed = whole;  // with line breaks, quotation marks and a backslash
    renamed.replace(whole.find("Access Controller"), 17, "Gate 7\\\\8");
    EXPECT_THROW(device.request("PUT", kDeviceInfo, whole, 8), Error);
    EXPECT_NE(device.request("PUT", kDeviceInfo, renamed).find("<statusCode>1<"), std::string::npos);
    EXPECT_EQ(device.request("GET", kDeviceInfo), renamed);
}

TEST(HostHeader, HandlersMayThrowBeReplacedAndDestroyTheirDevice) {
    veltasim::Device sim;
    sim.start();
    Library library(VELTADEV_PATH);
    library.passEvents(true);
    auto device = std::make_unique<Device>(library);
    std::promise<int> status;
    device->onStatus([&](int now, const std::string&) { status.set_value(now); });
    device->connect("127.0.0.1", sim.port(), "admin", "velta-sim-1");
    ASSERT_EQ(status.get_future().wait_for(kDeadline), std::future_status::ready);
    ASSERT_TRUE(waitOnline(*device));

    std::promise<void> thrown;
    std::promise<size_t> jpeg;
    std::promise<void> gone;
    device->startEvents([&](const Event&) {
        device->startEvents([&](const Event& second) {
            const std::string kept(8, 'x');  // lives in this handler, which outlives its device
            jpeg.set_value(second.jpeg().size());
            device.reset();
            if (kept == "xxxxxxxx") gone.set_value();
        });
        thrown.set_value();
        throw std::runtime_error("dropped");
    });
    const std::string picture(veltasim::picture(veltasim::PictureSize::Small));
    ASSERT_TRUE(sim.waitForStreams(1, kDeadline));
    sim.sendAccessEvent();
    ASSERT_EQ(thrown.get_future().wait_for(kDeadline), std::future_status::ready);
    sim.sendAccessEvent({.picture = picture});
    ASSERT_EQ(gone.get_future().wait_for(kDeadline), std::future_status::ready);
    EXPECT_EQ(jpeg.get_future().get(), picture.size());
}

}  // namespace
