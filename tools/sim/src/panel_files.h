#pragma once

#include <string_view>

namespace veltasim {

struct PanelFile {
    std::string_view path;  // "/panel.js"
    const char* contentType;
    std::string_view content;
};

// A file of the panel, which lies in the program; null: there is none.
const PanelFile* findPanelFile(std::string_view path);

}  // namespace veltasim
