// A file in memory that a child process writes and its parent reads.
#pragma once

#include <string>

namespace check {

class MemoryFile {
 public:
    MemoryFile();  // throws std::system_error
    ~MemoryFile();
    MemoryFile(MemoryFile&& other) noexcept;
    MemoryFile& operator=(MemoryFile&&) = delete;

    int fd() const { return fd_; }
    std::string content() const;

 private:
    int fd_;
};

}  // namespace check
