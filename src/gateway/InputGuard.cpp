#include "gateway/InputGuard.h"

#include <algorithm>
#include <iterator>

#include "gateway/JsonExtent.h"

namespace velta {

namespace {

// Position behind the next occurrence of mark, or the end of the text.
size_t behind(std::string_view text, std::string_view mark, size_t from) {
    const size_t at = text.find(mark, from);
    return at == std::string_view::npos ? text.size() : at + mark.size();
}

// What may stand in a document besides elements: where it starts and how it ends. The last one takes all others.
struct Passage {
    std::string_view opening;
    std::string_view closing;
};
constexpr Passage kPassages[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"<!", ">"}};

const Passage* passageAt(std::string_view text) {
    const bool isPassage = text.size() > 1 && (text[1] == '!' || text[1] == '?');
    if (!isPassage) return nullptr;
    return std::find_if(std::begin(kPassages), std::end(kPassages) - 1,
                        [&](const Passage& candidate) { return text.starts_with(candidate.opening); });
}

struct Tag {
    size_t end = 0; /* behind its ">" */
    int attributes = 0;
    bool closesItself = false;
};

Tag readTag(std::string_view text, size_t at) {
    Tag tag;
    char quote = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '=') {
            ++tag.attributes;
        } else if (c == '>') {
            tag.closesItself = text[at - 1] == '/';
            ++at;
            break;
        }
    }
    tag.end = at;
    return tag;
}

}  // namespace

bool isJsonShapeAllowed(std::string_view text) {
    if (text.size() <= kMaxJsonNesting) return true;  // nothing nests deeper than it is long
    JsonExtent extent;
    extent.feed(text);
    return extent.deepest() <= kMaxJsonNesting && extent.values() <= kMaxJsonValues;
}

bool isXmlShapeAllowed(std::string_view text) {
    int nesting = 0;
    int elements = 0;
    for (size_t at = text.find('<'); at < text.size(); at = text.find('<', at)) {
        const std::string_view rest = text.substr(at);
        if (const Passage* const passage = passageAt(rest)) {
            at = behind(text, passage->closing, at + passage->opening.size());
        } else if (rest.starts_with("</")) {
            --nesting;
            at = behind(text, ">", at);
        } else {
            const Tag tag = readTag(text, at + 1);
            if (++elements > kMaxXmlElements || tag.attributes > kMaxXmlAttributes) return false;
            if (!tag.closesItself && ++nesting > kMaxXmlNesting) return false;
            at = tag.end;
        }
    }
    return true;
}

}  // namespace velta
