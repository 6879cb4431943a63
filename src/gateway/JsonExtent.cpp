#include "gateway/JsonExtent.h"

namespace velta {

void JsonExtent::openBracket() {
    ++values_;
    if (++depth_ > deepest_) deepest_ = depth_;
}

void JsonExtent::closeBracket() {
    if (--depth_ <= 0) state_ = State::Closed;
}

size_t JsonExtent::feed(std::string_view bytes) {
    size_t used = 0;
    for (; used < bytes.size() && state_ != State::Closed; ++used) {
        const char c = bytes[used];
        switch (state_) {
            case State::Text:
                if (first_ == 0 && c != ' ' && c != '\t' && c != '\r' && c != '\n' && c != '/') first_ = c;
                if (c == '"') state_ = State::String;
                if (c == '/') state_ = State::Slash;
                if (c == ',') ++values_;
                if (c == '{' || c == '[') openBracket();
                if (c == '}' || c == ']') closeBracket();
                break;
            case State::String:
                if (c == '\\') state_ = State::Escape;
                if (c == '"') state_ = State::Text;
                break;
            case State::Escape:
                state_ = State::String;
                break;
            case State::Slash:
                state_ = c == '/' ? State::LineComment : c == '*' ? State::BlockComment : State::Text;
                break;
            case State::LineComment:
                if (c == '\n' || c == '\r') state_ = State::Text;
                break;
            case State::BlockComment:
                if (c == '*') state_ = State::BlockCommentStar;
                break;
            case State::BlockCommentStar:
                if (c == '/') {
                    state_ = State::Text;
                } else if (c != '*') {
                    state_ = State::BlockComment;
                }
                break;
            case State::Closed:
                break;
        }
    }
    return used;
}

}  // namespace velta
