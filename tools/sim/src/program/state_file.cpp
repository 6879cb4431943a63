#include "program/state_file.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "program/settings.h"

namespace veltasim {

void StateFile::load(Device& device) const {
    if (path_.empty() || !std::filesystem::exists(path_)) return;
    std::ifstream file(path_, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    if (!file) throw BadUsage(path_ + ": cannot be read");
    try {
        device.loadState(text);
    } catch (const std::runtime_error& error) {
        throw BadUsage(path_ + ": " + error.what());
    }
}

void StateFile::save(const Device& device) const {
    if (path_.empty()) return;
    const std::string fresh = path_ + ".new";
    std::ofstream file(fresh, std::ios::binary);
    file << device.saveState();
    file.close();
    std::error_code error;
    if (file) std::filesystem::rename(fresh, path_, error);
    if (!file || error) throw std::runtime_error(path_ + ": cannot be written");
}

}  // namespace veltasim
