#include "resources/resource.h"

#include <charconv>

namespace veltasim {

Reply done(const Call& call) {
    return statusReply(call.request.target, 200, kOk);
}

Reply notFound(const Call& call) {
    return statusReply(call.request.target, 404, kNotSupported);
}

Reply refused(const Call& call, const Status& why) {
    return statusReply(call.request.target, why);
}

std::optional<Reply> readDocument(const Call& call, const char* root, pugi::xml_document& document) {
    if (!document.load_buffer(call.request.body.data(), call.request.body.size()))
        return refused(call, kBadXmlFormat);
    if (document.document_element().name() != std::string_view(root)) return refused(call, kBadXmlContent);
    return std::nullopt;
}

std::optional<size_t> indexIn(const Call& call, size_t count) {
    const std::string& text = call.variables.front();
    size_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < 1 || number > count) return std::nullopt;
    return number - 1;
}

}  // namespace veltasim
