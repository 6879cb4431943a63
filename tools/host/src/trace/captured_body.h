// A body on its way through a connection, as much of it as a trace keeps.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "trace/left_out.h"

namespace host {

// A part of a multipart body: an alert stream is one that does not end.
struct BodyPart {
    std::chrono::steady_clock::time_point arrived;
    size_t size = 0;  // bytes of the text that is kept of it, with boundary line and headers
};

class CapturedBody {
 public:
    static constexpr size_t kMostBytes = size_t{16} << 20U;  // of text that is kept
    static constexpr size_t kMostPartBytes = size_t{8} << 20U;

    explicit CapturedBody(Keep keep) : keep_(keep) {}

    void begin(std::string_view contentType);
    void add(std::string_view bytes);
    void end();  // what is kept is complete from here on

    const std::string& contentType() const { return contentType_; }
    const std::string& text() const { return text_; }
    const std::vector<BodyPart>& parts() const { return parts_; }
    uint64_t size() const { return size_; }          // of the body itself
    uint64_t bytesCut() const { return bytesCut_; }  // that came when there was enough already
    bool isMultipart() const { return !delimiter_.empty(); }

 private:
    using Clock = std::chrono::steady_clock;

    void splitParts();
    void keepPart(std::string_view part);

    Keep keep_;
    std::string contentType_;
    std::string delimiter_;  // "--" and the boundary; empty: not multipart
    std::string pending_;    // not yet masked: the whole body, or the part that has not ended
    size_t searched_ = 0;    // so far no delimiter in pending_
    Clock::time_point partArrived_;
    std::string text_;
    std::vector<BodyPart> parts_;
    uint64_t size_ = 0;
    uint64_t bytesCut_ = 0;
};

}  // namespace host
