#ifndef VELTA_GATEWAY_JSONEXTENT_H
#define VELTA_GATEWAY_JSONEXTENT_H

#include <cstddef>
#include <string_view>

namespace velta {

/* Finds where a JSON object or array that arrives bit by bit ends, looking at each byte once. Follows strings
 * and comments as the JSON reader does, and does not care whether the rest is valid. */
class JsonExtent {
 public:
    /* Continues with the next bytes. Returns how many of them belong to the value; fewer than given means
     * that it is closed. */
    size_t feed(std::string_view bytes);

    /* The outermost bracket has been closed. */
    bool closed() const { return state_ == State::Closed; }

    /* The first byte that is neither blank nor comment, or 0 while there was none. */
    char first() const { return first_; }

    /* The greatest number of brackets open at once. */
    int deepest() const { return deepest_; }

    /* Brackets opened and commas: at least the number of values, less one. */
    size_t values() const { return values_; }

 private:
    enum class State { Text, String, Escape, Slash, LineComment, BlockComment, BlockCommentStar, Closed };

    const char* readText(const char* at, const char* end);
    const char* readString(const char* at, const char* end);
    void readComment(char c);
    void openBracket();
    void closeBracket();

    State state_ = State::Text;
    char first_ = 0;
    int depth_ = 0;
    int deepest_ = 0;
    size_t values_ = 0;
};

}  // namespace velta

#endif
