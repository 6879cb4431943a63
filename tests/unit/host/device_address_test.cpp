#include "device_address.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <stdexcept>

#include "waiter.h"

TEST(DeviceAddress, Parse_hostAndPort) {
    EXPECT_EQ(host::parseDeviceAddress("10.0.0.5").text(), "10.0.0.5:80");
    EXPECT_EQ(host::parseDeviceAddress("front-door.example:65535").text(), "front-door.example:65535");
    EXPECT_EQ(host::parseDeviceAddress("a:1").port, 1);
}

// A semicolon would end the item of the connection URL that the address goes into.
TEST(DeviceAddress, Parse_refusesWhatIsNoAddress) {
    for (const char* text : {"", ":80", "a:", "a:0", "a:65536", "a:-1", "a:+1", "a: 80", "a:80x", "a:80:80",
                             "http://a", "a/b", "a b", "a;Port=1", "a@b", "[::1]:80"}) {
        EXPECT_THROW(host::parseDeviceAddress(text), std::invalid_argument) << text;
    }
}

TEST(DeviceAddress, Probe_tellsAListenerFromAClosedPort) {
    const host::Fd listening(socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(bind(listening.get(), reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(getsockname(listening.get(), reinterpret_cast<sockaddr*>(&address), &size), 0);
    const host::DeviceAddress device{"127.0.0.1", ntohs(address.sin_port)};

    const host::Reachability closed = host::probe(device);
    EXPECT_FALSE(closed.accepts);
    EXPECT_NE(closed.finding.find(device.text() + " refuses"), std::string::npos) << closed.finding;
    ASSERT_EQ(listen(listening.get(), 1), 0);
    EXPECT_TRUE(host::probe(device).accepts);
}
