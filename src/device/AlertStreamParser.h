#ifndef VELTA_DEVICE_ALERTSTREAMPARSER_H
#define VELTA_DEVICE_ALERTSTREAMPARSER_H

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "device/Occurrence.h"
#include "gateway/JsonExtent.h"

namespace velta {

/* Cuts a device's alert stream into alarm messages.
 *
 * The stream is a multipart HTTP answer whose response headers come first. A message is a JSON part, as
 * compact text and "\r\n"; or a JSON part that announces pictures together with the picture part behind it:
 * everything from the JSON text to the last byte received. After a message the whole buffer is forgotten:
 * what arrived of further parts with its last chunk is lost.
 *
 * A JSON part that can't be read is kept as long as it may become valid, and dropped when it is over: when
 * its announced length and the next boundary have arrived. A stream that completes no message within
 * kMaxBuffer bytes loses them.
 *
 * Every byte is looked at a fixed number of times, however the stream is cut into chunks. One thread at a
 * time. */
class AlertStreamParser {
 public:
    using Sink = std::function<void(std::string message)>;

    static constexpr size_t kMaxBuffer = size_t{64} << 20;

    explicit AlertStreamParser(Sink sink) : sink_(std::move(sink)) {}

    /* Takes the next bytes of the stream and hands on the message that they complete, if any. Response
     * headers must come one line at a time: the boundary is all that stands behind "boundary=" when its line
     * has come. */
    void feed(std::string_view chunk);

    /* Forgets the bytes received so far. The boundary stays. Needs no memory. */
    void clear() noexcept;

    /* "--" and the boundary parameter of the stream's content type; empty before it was seen. Set once. */
    std::string getBoundary() const { return boundary_; }

    size_t buffered() const { return buffer_.size(); }

 private:
    /* A JSON text in the buffer. It is read once, when its last byte has arrived. */
    class JsonText {
     public:
        enum class State { Open, Valid, Invalid };

        void startAt(size_t position);
        State advance(std::string_view buffer);
        size_t start() const { return start_; }
        int picturesNumber() const { return picturesNumber_; }
        std::string takeCompact() { return std::move(compact_); }

     private:
        void read(std::string_view text);

        size_t start_ = std::string::npos;
        size_t scanned_ = 0;
        JsonExtent extent_;
        State state_ = State::Open;
        int picturesNumber_ = 0;
        std::string compact_;  // only of a text that announces no pictures
    };

    /* The last picture part in the buffer. */
    struct Picture {
        LastOccurrence jpeg{"Content-Type: image/jpeg"};
        LastOccurrence pjpeg{"Content-Type: image/pjpeg"};
        size_t mark = std::string::npos;
        FirstOccurrence lengthMark{"Content-Length: "};
        size_t lengthAt = std::string::npos;
        DecimalNumber contentLength;
        FirstOccurrence headerEnd{"\r\n\r\n"};
    };

    void setBoundary();
    void procEventCallback();
    JsonText* isJsonContent();
    bool isJpegContent();
    bool dropUnreadablePart();
    size_t announcedLength() const;
    void take(std::string message);
    std::string messageFrom(size_t position);
    void searchAll();
    void searchFrom(size_t position);

    const Sink sink_;
    std::string boundary_;
    std::string buffer_;
    size_t begin_ = 0;  // before it stand parts that were dropped

    FirstOccurrence boundaryParameter_{"boundary="};
    FirstOccurrence boundaryLineEnd_{"\r\n"};
    size_t boundaryParameterAt_ = std::string::npos;

    FirstOccurrence firstBoundary_{""};
    FirstOccurrence firstHeaderEnd_{"\r\n\r\n"};
    FirstOccurrence jsonMark_{"application/json"};
    size_t jsonMarkAt_ = std::string::npos;
    FirstOccurrence jsonHeaderEnd_{"\r\n\r\n"};
    size_t unreadablePart_ = std::string::npos;  // the JSON text that nextBoundary_ looks for the end of
    FirstOccurrence nextBoundary_{""};           // behind the announced end of that text
    JsonText json_;
    JsonText earlyJson_;  // behind the buffer's first header end, until that of the JSON part arrives
    Picture picture_;
};

}  // namespace velta

#endif
