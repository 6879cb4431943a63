// Runs a target once with each file of the folders and files given; builds without libFuzzer replay corpora with it.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "support.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

namespace fs = std::filesystem;

void replay(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error("no such input: " + file.string());
    const std::vector<char> bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    std::fprintf(stderr, "%s\n", file.c_str());  // the last one told is the one that fails
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

int replayAll(int argc, char** argv) {
    size_t files = 0;
    for (const char* const argument : std::vector<const char*>(argv + 1, argv + argc)) {
        if (!fs::is_directory(argument)) {
            replay(argument);
            ++files;
            continue;
        }
        for (const auto& entry : fs::directory_iterator(argument)) {
            replay(entry.path());
            ++files;
        }
    }
    std::fprintf(stderr, "%zu inputs\n", files);
    return files > 0 ? 0 : 1;  // a corpus that is not found tests nothing
}

}  // namespace

int main(int argc, char** argv) {
    LLVMFuzzerInitialize(&argc, &argv);
    try {
        return replayAll(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
