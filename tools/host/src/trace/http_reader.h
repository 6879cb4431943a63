// The messages of one direction of an HTTP/1.1 connection, however its bytes are cut into pieces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

struct HttpHead {
    std::string firstLine;
    std::vector<std::pair<std::string, std::string>> headers;
    size_t size = 0;  // bytes, with the empty line at the end

    // Value of the first header of that name (in any case); empty: there is none.
    std::string_view header(std::string_view name) const;
};

bool equalsIgnoringCase(std::string_view a, std::string_view b);

// Who is told of the messages.
class HttpSink {
 public:
    virtual ~HttpSink() = default;
    // False: no body follows, whatever the head says (the answer to HEAD).
    virtual bool onHead(HttpHead head) = 0;
    virtual void onBody(std::string_view bytes) = 0;  // without the framing of chunks
    virtual void onEnd() = 0;
};

class HttpReader {
 public:
    enum class Side { Request, Response };

    HttpReader(Side side, HttpSink& sink) : side_(side), sink_(sink) {}

    void feed(std::string_view bytes);
    // The connection has ended, and with it a body whose length nobody told.
    void close();
    bool isBetweenMessages() const { return state_ == State::Head && head_.size == 0 && line_.empty(); }
    bool readsUntilClose() const { return state_ == State::UntilClose; }
    bool isBroken() const {
        return state_ == State::Broken;
    }  // these bytes are no HTTP; nothing more is told

 private:
    enum class State { Head, Body, ChunkSize, ChunkData, ChunkEnd, Trailer, UntilClose, Broken };

    size_t take(std::string_view bytes);
    size_t takeLine(std::string_view bytes);
    size_t takeBody(std::string_view bytes);
    void onLine(const std::string& line);
    void onHeadLine(const std::string& line);
    void onHeadEnd();
    void onChunkSize(const std::string& line);
    void end();

    const Side side_;
    HttpSink& sink_;
    State state_ = State::Head;
    std::string line_;  // as far as it has come
    HttpHead head_;
    uint64_t left_ = 0;  // of the body or the chunk
};

}  // namespace host
