#include "picture.h"

#include <strings.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>

#include "failure.h"

namespace host {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeaderEnd = "\r\n\r\n";
constexpr std::string_view kLength = "Content-Length:";
constexpr std::string_view kJpegStart = "\xFF\xD8";
constexpr int kMaxSameNames = 1000;

std::optional<size_t> contentLength(std::string_view headers) {
    while (!headers.empty()) {
        const size_t end = std::min(headers.find(kLineEnd), headers.size());
        std::string_view line = headers.substr(0, end);
        headers.remove_prefix(std::min(end + kLineEnd.size(), headers.size()));
        if (line.size() < kLength.size() || strncasecmp(line.data(), kLength.data(), kLength.size()) != 0)
            continue;
        line.remove_prefix(std::min(line.find_first_not_of(" \t", kLength.size()), line.size()));
        size_t length = 0;
        const auto [stop, error] = std::from_chars(line.data(), line.data() + line.size(), length);
        if (error != std::errc() ||
            std::string_view(stop, line.data() + line.size()).find_first_not_of(" \t") !=
                std::string_view::npos)
            return std::nullopt;
        return length;
    }
    return std::nullopt;
}

}  // namespace

Picture cutPicture(std::string_view part) {
    while (part.starts_with(kLineEnd))
        part.remove_prefix(kLineEnd.size());
    const size_t headerEnd = part.find(kHeaderEnd);
    if (headerEnd == std::string_view::npos) return {{}, "the picture part has no headers"};
    const auto length = contentLength(part.substr(0, headerEnd));
    if (!length) return {{}, "the picture part has no usable Content-Length"};
    const std::string_view body = part.substr(headerEnd + kHeaderEnd.size());
    if (body.size() < *length)
        return {{},
                "the picture is cut off: " + std::to_string(body.size()) + " of " + std::to_string(*length) +
                    " bytes"};
    const std::string_view jpeg = body.substr(0, *length);
    if (!jpeg.starts_with(kJpegStart)) return {{}, "the picture is no JPEG"};
    return {jpeg, ""};
}

std::string pictureName(const std::string& time, const std::string& device, const std::string& serialNo) {
    constexpr std::string_view kSafe = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-";
    std::string name = "event_" + time + "_" + device + "_" + serialNo;
    for (char& c : name) {
        if (kSafe.find(c) == std::string_view::npos) c = '-';
    }
    return name;
}

std::string savePicture(const std::string& folder, const std::string& name, std::string_view jpeg) {
    std::error_code ignored;  // an impossible folder shows when the file is opened
    std::filesystem::create_directories(folder, ignored);
    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
    File file(nullptr, std::fclose);
    std::string path;
    for (int same = 1; !file && same <= kMaxSameNames; ++same) {
        path =
            (std::filesystem::path(folder) / (name + (same > 1 ? "_" + std::to_string(same) : "") + ".jpg"))
                .string();
        file.reset(std::fopen(path.c_str(), "wbxe"));
        if (!file && errno != EEXIST) break;
    }
    const bool written = file && std::fwrite(jpeg.data(), 1, jpeg.size(), file.get()) == jpeg.size() &&
                         std::fclose(file.release()) == 0;
    if (!written)
        throw Failure(ExitCode::Failed, "cannot save " + path + ": " + std::strerror(errno),
                      "give another folder with --pictures");
    return path;
}

}  // namespace host
