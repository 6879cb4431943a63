#include "device/AlertStreamParser.h"

#include <xlog/xlog.h>

#include <algorithm>

#include "gateway/JsonText.h"

namespace velta {

namespace {

constexpr size_t npos = std::string::npos;
constexpr size_t kKeptCapacity = size_t{1} << 20;
constexpr std::string_view kHeaderEnd = "\r\n\r\n";
constexpr std::string_view kContentLength = "Content-Length: ";
constexpr std::string_view kJsonMark = "application/json";
constexpr std::string_view kBoundaryParameter = "boundary=";

}  // namespace

void AlertStreamParser::feed(std::string_view chunk) {
    buffer_.append(chunk);
    setBoundary();
    procEventCallback();
    if (begin_ > 0) {
        buffer_.erase(0, begin_);
        searchAll();
    }
    if (buffer_.size() > kMaxBuffer) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] no complete message in %zu bytes, dropped", __func__,
                    __LINE__, buffer_.size());
        clear();
    }
}

void AlertStreamParser::clear() noexcept {
    // What a flood has taken goes back; what ordinary messages need stays.
    if (buffer_.capacity() > kKeptCapacity) std::string().swap(buffer_);
    buffer_.clear();
    boundaryParameter_.restart(0);
    boundaryParameterAt_ = npos;
    searchAll();
}

void AlertStreamParser::searchAll() {
    searchFrom(0);
    picture_ = Picture{};
}

// What stands before this position no longer counts.
void AlertStreamParser::searchFrom(size_t position) {
    begin_ = position;
    firstBoundary_.restart(position, boundary_);
    firstHeaderEnd_.restart(position);
    jsonMark_.restart(position);
    jsonMarkAt_ = npos;
    json_.startAt(npos);
    earlyJson_.startAt(npos);
    unreadablePart_ = npos;
    picture_.jpeg.forgetBefore(position);
    picture_.pjpeg.forgetBefore(position);
}

void AlertStreamParser::setBoundary() {
    if (!boundary_.empty()) return;
    if (boundaryParameterAt_ == npos) {
        boundaryParameterAt_ = boundaryParameter_.in(buffer_);
        if (boundaryParameterAt_ == npos) return;
        boundaryLineEnd_.restart(boundaryParameterAt_ + kBoundaryParameter.size());
    }
    if (boundaryLineEnd_.in(buffer_) == npos) return;
    // The line has just come as a chunk of its own: the buffer ends with it.
    const std::string_view rest =
        std::string_view(buffer_).substr(boundaryParameterAt_ + kBoundaryParameter.size());
    boundary_ = "--";
    boundary_ += rest.substr(0, rest.size() - 2);
    firstBoundary_.restart(begin_, boundary_);
    xlog_format(XLOG_INFO, "VELTADEV", "[%s(%d)] boundary=%s", __func__, __LINE__, boundary_.c_str());
}

void AlertStreamParser::procEventCallback() {
    do {
        if (JsonText* json = isJsonContent()) {
            if (json->picturesNumber() == 0) {
                take(json->takeCompact());
            } else if (isJpegContent()) {
                take(messageFrom(json->start()));
            }
            return;
        }
    } while (dropUnreadablePart());

    if (isJpegContent()) {  // a picture whose JSON part was not recognised
        size_t start = firstBoundary_.in(buffer_);
        start = boundary_.empty() || start == npos ? begin_ : start + boundary_.size();
        const size_t headerEnd = buffer_.find(kHeaderEnd, start);
        take(messageFrom(headerEnd == npos ? start : headerEnd + kHeaderEnd.size()));
    }
}

// The JSON part of the buffer, once it is complete and valid.
AlertStreamParser::JsonText* AlertStreamParser::isJsonContent() {
    if (jsonMarkAt_ == npos) {
        jsonMarkAt_ = jsonMark_.in(buffer_);
        if (jsonMarkAt_ == npos) return nullptr;
        jsonHeaderEnd_.restart(jsonMarkAt_ + kJsonMark.size());
    }
    if (boundary_.empty() || firstBoundary_.in(buffer_) == npos) return nullptr;

    JsonText* json = &json_;
    size_t headerEnd = jsonHeaderEnd_.in(buffer_);
    if (headerEnd == npos) {
        json = &earlyJson_;
        headerEnd = firstHeaderEnd_.in(buffer_);
        if (headerEnd == npos) return nullptr;
    }
    if (json->start() == npos) json->startAt(headerEnd + kHeaderEnd.size());
    return json->advance(buffer_) == JsonText::State::Valid ? json : nullptr;
}

// Whether the last picture part is complete.
bool AlertStreamParser::isJpegContent() {
    size_t mark = picture_.jpeg.in(buffer_);
    const size_t pjpegMark = picture_.pjpeg.in(buffer_);
    if (mark == npos) mark = pjpegMark;
    if (mark == npos) return false;
    if (mark != picture_.mark) {
        picture_.mark = mark;
        picture_.lengthMark.restart(mark);
        picture_.lengthAt = npos;
        picture_.headerEnd.restart(mark);
    }
    if (picture_.lengthAt == npos) {
        picture_.lengthAt = picture_.lengthMark.in(buffer_);
        if (picture_.lengthAt == npos) return false;
        picture_.contentLength.restart(picture_.lengthAt + kContentLength.size());
    }
    const size_t headerEnd = picture_.headerEnd.in(buffer_);
    if (headerEnd == npos) return false;
    const size_t end = headerEnd + kHeaderEnd.size() + picture_.contentLength.in(buffer_);
    if (buffer_.size() >= end) return true;
    if (end <= kMaxBuffer && buffer_.capacity() < end)
        buffer_.reserve(end);  // once, instead of growing step by step
    return false;
}

// Drops a JSON part that is over and did not become valid. True when what follows it is to be looked at.
bool AlertStreamParser::dropUnreadablePart() {
    if (json_.start() == npos) return false;
    if (unreadablePart_ != json_.start()) {
        unreadablePart_ = json_.start();
        nextBoundary_.restart(unreadablePart_ + announcedLength(), boundary_);
    }
    const size_t next = nextBoundary_.in(buffer_);
    if (next == npos) return false;
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] unreadable part of %zu bytes dropped", __func__, __LINE__,
                next - unreadablePart_);
    searchFrom(next);
    return true;
}

// The Content-Length of the JSON part, which may stand before or behind its content type; 0 when it has none.
size_t AlertStreamParser::announcedLength() const {
    const std::string_view received = std::string_view(buffer_).substr(0, json_.start());
    const size_t boundary = received.rfind(boundary_);
    const size_t mark = received.find(kContentLength, std::max(begin_, boundary == npos ? 0 : boundary));
    if (mark == npos) return 0;
    DecimalNumber length;
    length.restart(mark + kContentLength.size());
    return length.in(received);
}

void AlertStreamParser::take(std::string message) {
    clear();
    sink_(std::move(message));
}

// Moves the buffer out instead of copying it; pictures are large.
std::string AlertStreamParser::messageFrom(size_t position) {
    std::string message = std::move(buffer_);
    message.erase(0, position);
    return message;
}

void AlertStreamParser::JsonText::startAt(size_t position) {
    *this = JsonText{};
    start_ = position;
    scanned_ = position;
}

AlertStreamParser::JsonText::State AlertStreamParser::JsonText::advance(std::string_view buffer) {
    if (state_ != State::Open) return state_;
    scanned_ += extent_.feed(buffer.substr(scanned_));
    if (extent_.first() != 0 && extent_.first() != '{') state_ = State::Invalid;
    if (extent_.closed()) read(buffer.substr(start_, scanned_ - start_));
    return state_;
}

void AlertStreamParser::JsonText::read(std::string_view text) {
    Json::Value value;
    const Json::Value& root = value;
    if (!parseJson(text, value) || !root.isObject()) {
        state_ = State::Invalid;
        return;
    }
    state_ = State::Valid;
    const Json::Value& event = root["AccessControllerEvent"];
    if (event.isObject() && event["picturesNumber"].isInt())
        picturesNumber_ = event["picturesNumber"].asInt();
    if (picturesNumber_ == 0) compact_ = writeJson(root) + "\r\n";
}

}  // namespace velta
