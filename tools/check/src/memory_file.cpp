#include "memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace check {

MemoryFile::MemoryFile() : fd_(memfd_create("velta-check", MFD_CLOEXEC)) {
    if (fd_ < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
}

MemoryFile::~MemoryFile() {
    if (fd_ >= 0) close(fd_);
}

MemoryFile::MemoryFile(MemoryFile&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

std::string MemoryFile::content() const {
    std::string text;
    char block[4096];
    for (ssize_t got = 0; (got = pread(fd_, block, sizeof block, static_cast<off_t>(text.size()))) > 0;)
        text.append(block, static_cast<size_t>(got));
    return text;
}

}  // namespace check
