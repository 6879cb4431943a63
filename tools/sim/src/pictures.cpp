#include "pictures.h"

#include <algorithm>
#include <array>
#include <utility>

// The files lie in the program as they are, each between two labels.
// clang-format off
#define EMBED(label, file)                         \
    asm(".pushsection .rodata\n"                   \
        ".global " label "Begin, " label "End\n"   \
        ".hidden " label "Begin, " label "End\n"   \
        label "Begin:\n"                           \
        ".incbin \"" PICTURE_DIR "/" file "\"\n"   \
        label "End:\n"                             \
        ".popsection\n")
// clang-format on

EMBED("veltasimSmall", "small.jpg");
EMBED("veltasimMedium", "medium.jpg");
EMBED("veltasimLarge", "large.jpg");

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
