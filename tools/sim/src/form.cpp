#include "form.h"

namespace veltasim {
namespace {

constexpr std::string_view kHeadEnd = "\r\n\r\n";

std::string boundaryIn(std::string_view contentType) {
    constexpr std::string_view kName = "boundary=";
    const size_t at = contentType.find(kName);
    if (at == std::string_view::npos) return "";
    std::string_view value = contentType.substr(at + kName.size());
    if (value.starts_with('"')) return std::string(value.substr(1, value.find('"', 1) - 1));
    return std::string(value.substr(0, value.find_first_of("; \t")));
}

}  // namespace

std::string_view formPart(std::string_view contentType, std::string_view body, std::string_view name) {
    const std::string boundary = "--" + boundaryIn(contentType);
    const std::string wanted = std::string("name=\"").append(name).append("\"");
    size_t begin = boundary.size() > 2 ? body.find(boundary) : std::string_view::npos;
    while (begin != std::string_view::npos) {
        const size_t end = body.find("\r\n" + boundary, begin);
        if (end == std::string_view::npos) break;
        const std::string_view part = body.substr(begin, end - begin);
        const size_t headEnd = part.find(kHeadEnd);
        if (headEnd != std::string_view::npos &&
            part.substr(0, headEnd).find(wanted) != std::string_view::npos)
            return part.substr(headEnd + kHeadEnd.size());
        begin = end + 2;
    }
    return {};
}

}  // namespace veltasim
