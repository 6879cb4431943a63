#include <veltasim/event.h>

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

}  // namespace veltasim
