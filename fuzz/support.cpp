#include "support.h"

#include <xlog/xlog.h>

#include <cstdio>
#include <cstdlib>

void fuzz::require(bool kept, const char* promise) {
    if (kept) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

// Every line is formatted, with the texts of devices in it, and none is shown.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xlog_set_level(XLOG_DEBUG);
    xlog_set_sink([](int, const char*, const char*, void*) {}, nullptr);
    return 0;
}
