/* A host with one session of one simulated device, which it has not checked yet. */
#pragma once

#include <gmock/gmock.h>
#include <json/json.h>
#include <veltasim/device.h>

#include <memory>
#include <sstream>
#include <string>

#include "plugin.h"

namespace host {

inline Json::Value parsed(const std::string& text) {
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

class SessionTest : public testing::Test {
 protected:
    explicit SessionTest(const veltasim::Options& options = {}) : device(options) {}

    void SetUp() override {
        device.start();
        ASSERT_EQ(library.record->Init(), VELTA_OK);
        session = std::make_unique<Session>(library);
        ASSERT_EQ(session->connectTo(device.port()), 0U);
    }
    void TearDown() override {
        session.reset();
        EXPECT_EQ(library.record->Uninit(), VELTA_OK);
    }

    veltasim::Device device;
    Library library;
    std::unique_ptr<Session> session;
};

}  // namespace host
