#include "gateway/JsonExtent.h"

#include <array>

namespace velta {

namespace {

/* The bytes that mean something outside of texts and comments. */
constexpr auto kStructural = [] {
    std::array<bool, 256> table{};
    for (const char c : {'"', '/', ',', '{', '[', '}', ']'})
        table[static_cast<unsigned char>(c)] = true;
    return table;
}();

}  // namespace

void JsonExtent::openBracket() {
    ++values_;
    if (++depth_ > deepest_) deepest_ = depth_;
}

void JsonExtent::closeBracket() {
    if (--depth_ <= 0) state_ = State::Closed;
}

const char* JsonExtent::readText(const char* at, const char* end) {
    if (first_ == 0) {
        while (at != end && (*at == ' ' || *at == '\t' || *at == '\r' || *at == '\n'))
            ++at;
        if (at == end) return at;
        if (*at != '/') first_ = *at;
    }
    while (at != end && !kStructural[static_cast<unsigned char>(*at)])
        ++at;
    if (at == end) return at;
    const char c = *at++;
    if (c == '"') state_ = State::String;
    if (c == '/') state_ = State::Slash;
    if (c == ',') ++values_;
    if (c == '{' || c == '[') openBracket();
    if (c == '}' || c == ']') closeBracket();
    return at;
}

const char* JsonExtent::readString(const char* at, const char* end) {
    while (at != end && *at != '"' && *at != '\\')
        ++at;
    if (at == end) return at;
    state_ = *at == '"' ? State::Text : State::Escape;
    return at + 1;
}

size_t JsonExtent::feed(std::string_view bytes) {
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    while (at != end && state_ != State::Closed) {
        switch (state_) {
            case State::Text:
                at = readText(at, end);
                break;
            case State::String:
                at = readString(at, end);
                break;
            case State::Escape:
                state_ = State::String;
                ++at;
                break;
            default:
                readComment(*at++);
                break;
        }
    }
    return static_cast<size_t>(at - bytes.data());
}

void JsonExtent::readComment(char c) {
    switch (state_) {
        case State::Slash:
            state_ = c == '/' ? State::LineComment : c == '*' ? State::BlockComment : State::Text;
            break;
        case State::LineComment:
            if (c == '\n' || c == '\r') state_ = State::Text;
            break;
        case State::BlockComment:
            if (c == '*') state_ = State::BlockCommentStar;
            break;
        default:  // BlockCommentStar
            if (c == '/') {
                state_ = State::Text;
            } else if (c != '*') {
                state_ = State::BlockComment;
            }
            break;
    }
}

}  // namespace velta
