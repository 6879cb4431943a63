#include "gateway/TagText.h"

namespace velta {

std::optional<std::string_view> textBetween(std::string_view text, std::string_view opening,
                                            std::string_view closing) {
    const size_t open = text.find(opening);
    if (open == std::string_view::npos) return std::nullopt;
    const size_t start = open + opening.size();
    const size_t end = text.find(closing, start);
    if (end == std::string_view::npos) return std::nullopt;
    return text.substr(start, end - start);
}

bool replaceDeviceName(std::string& document, std::string_view name) {
    const auto present = textBetween(document, "<deviceName>", "</deviceName>");
    if (!present) return false;
    document.replace(static_cast<size_t>(present->data() - document.data()), present->size(), name);
    document.resize(document.find_last_not_of('\0') + 1);
    return true;
}

}  // namespace velta
