#include "trace/http_reader.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <optional>

namespace host {
namespace {

constexpr size_t kMostHeadBytes = size_t{256} * 1024;

std::string_view trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

std::optional<uint64_t> number(std::string_view text, int base) {
    uint64_t value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || stop == text.data()) return std::nullopt;
    return value;
}

// "HTTP/1.1 204 No Content"
uint64_t statusOf(const HttpHead& head) {
    const size_t blank = head.firstLine.find(' ');
    return blank == std::string::npos
               ? 0
               : number(std::string_view(head.firstLine).substr(blank + 1), 10).value_or(0);
}

bool isFirstLine(const std::string& line, HttpReader::Side side) {
    return side == HttpReader::Side::Response ? line.starts_with("HTTP/")
                                              : line.find(" HTTP/") != std::string::npos;
}

}  // namespace

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

std::string_view HttpHead::header(std::string_view name) const {
    const auto found = std::ranges::find_if(
        headers, [name](const auto& header) { return equalsIgnoringCase(header.first, name); });
    return found == headers.end() ? std::string_view() : std::string_view(found->second);
}

void HttpReader::feed(std::string_view bytes) {
    while (!bytes.empty() && state_ != State::Broken)
        bytes.remove_prefix(take(bytes));
}

void HttpReader::close() {
    if (state_ == State::UntilClose) end();
}

size_t HttpReader::take(std::string_view bytes) {
    switch (state_) {
        case State::Body:
        case State::ChunkData:
            return takeBody(bytes);
        case State::UntilClose:
            sink_.onBody(bytes);
            return bytes.size();
        default:
            return takeLine(bytes);
    }
}

size_t HttpReader::takeLine(std::string_view bytes) {
    const size_t lineFeed = bytes.find('\n');
    const size_t taken = lineFeed == std::string_view::npos ? bytes.size() : lineFeed + 1;
    line_.append(bytes.substr(0, taken));
    if (head_.size + line_.size() > kMostHeadBytes) {
        state_ = State::Broken;
    } else if (lineFeed != std::string_view::npos) {
        std::string line = std::exchange(line_, "");
        if (state_ == State::Head) head_.size += line.size();
        line.pop_back();
        if (line.ends_with('\r')) line.pop_back();
        onLine(line);
    }
    return taken;
}

size_t HttpReader::takeBody(std::string_view bytes) {
    const size_t taken = std::min<uint64_t>(left_, bytes.size());
    sink_.onBody(bytes.substr(0, taken));
    left_ -= taken;
    if (left_ > 0) return taken;
    if (state_ == State::Body)
        end();
    else
        state_ = State::ChunkEnd;
    return taken;
}

void HttpReader::onLine(const std::string& line) {
    if (state_ == State::Head)
        onHeadLine(line);
    else if (state_ == State::ChunkSize)
        onChunkSize(line);
    else if (state_ == State::ChunkEnd)
        state_ = line.empty() ? State::ChunkSize : State::Broken;
    else if (line.empty())  // behind the trailers
        end();
}

void HttpReader::onHeadLine(const std::string& line) {
    if (head_.firstLine.empty()) {
        if (line.empty())
            head_.size = 0;  // a line end too many behind the message before
        else if (isFirstLine(line, side_))
            head_.firstLine = line;
        else
            state_ = State::Broken;
        return;
    }
    if (line.empty()) {
        onHeadEnd();
        return;
    }
    const size_t colon = std::min(line.find(':'), line.size());
    head_.headers.emplace_back(trimmed(std::string_view(line).substr(0, colon)),
                               trimmed(std::string_view(line).substr(std::min(colon + 1, line.size()))));
}

void HttpReader::onHeadEnd() {
    const HttpHead head = std::exchange(head_, {});
    const uint64_t status = side_ == Side::Response ? statusOf(head) : 0;
    if (status >= 100 && status < 200) return;  // "100 Continue": the answer is still to come
    const bool isChunked = equalsIgnoringCase(head.header("Transfer-Encoding"), "chunked");
    const auto length = number(head.header("Content-Length"), 10);
    const bool mayHaveBody = sink_.onHead(head) && status != 204 && status != 304;
    left_ = length.value_or(0);
    if (mayHaveBody && isChunked)
        state_ = State::ChunkSize;
    else if (mayHaveBody && left_ > 0)
        state_ = State::Body;
    else if (mayHaveBody && !length && side_ == Side::Response)
        state_ = State::UntilClose;
    else
        end();
}

void HttpReader::onChunkSize(const std::string& line) {
    const auto size = number(line, 16);
    left_ = size.value_or(0);
    if (!size)
        state_ = State::Broken;
    else
        state_ = left_ > 0 ? State::ChunkData : State::Trailer;
}

void HttpReader::end() {
    state_ = State::Head;
    sink_.onEnd();
}

}  // namespace host
