#include "pictures.h"

#include <algorithm>
#include <array>
#include <utility>

#include "embed.h"

EMBED("veltasimSmall", PICTURE_DIR "/small.jpg");
EMBED("veltasimMedium", PICTURE_DIR "/medium.jpg");
EMBED("veltasimLarge", PICTURE_DIR "/large.jpg");

extern "C" {
extern const char veltasimSmallBegin[], veltasimSmallEnd[];
extern const char veltasimMediumBegin[], veltasimMediumEnd[];
extern const char veltasimLargeBegin[], veltasimLargeEnd[];
}

namespace veltasim {
namespace {

constexpr std::array<std::pair<std::string_view, PictureSize>, 3> kNames{
    {{"small", PictureSize::Small}, {"medium", PictureSize::Medium}, {"large", PictureSize::Large}}};

}  // namespace

std::string_view picture(PictureSize size) {
    switch (size) {
        case PictureSize::Small:
            return {veltasimSmallBegin, veltasimSmallEnd};
        case PictureSize::Medium:
            return {veltasimMediumBegin, veltasimMediumEnd};
        case PictureSize::Large:
            break;
    }
    return {veltasimLargeBegin, veltasimLargeEnd};
}

std::string_view pictureNamed(std::string_view name) {
    const auto* found =
        std::find_if(kNames.begin(), kNames.end(), [&](const auto& row) { return row.first == name; });
    return found == kNames.end() ? std::string_view() : picture(found->second);
}

std::string_view nameOfPicture(std::string_view bytes) {
    const auto* found = std::find_if(kNames.begin(), kNames.end(),
                                     [&](const auto& row) { return picture(row.second) == bytes; });
    return found == kNames.end() ? std::string_view() : found->first;
}

std::string_view builtInPicture(std::string_view bytes) {
    return pictureNamed(nameOfPicture(bytes));
}

}  // namespace veltasim
