#pragma once

// A file lies in the program as it is, between the labels NAMEBegin and NAMEEnd.
// clang-format off
#define EMBED(label, file)                         \
    asm(".pushsection .rodata\n"                   \
        ".global " label "Begin, " label "End\n"   \
        ".hidden " label "Begin, " label "End\n"   \
        label "Begin:\n"                           \
        ".incbin \"" file "\"\n"                   \
        label "End:\n"                             \
        ".popsection\n")
// clang-format on
