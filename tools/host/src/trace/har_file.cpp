#include "trace/har_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "failure.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kBegin =
    R"({"log":{"version":"1.2","creator":{"name":"velta-host","version":")" VELTA_HOST_VERSION
    R"("},"pages":[],"entries":[)";
constexpr const char* kEnd = "\n]}}\n";

int openFile(const std::string& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0) throw Failure(ExitCode::Failed, path + ": " + std::strerror(errno));
    fchmod(file, S_IRUSR | S_IWUSR);  // one that was there before may be open to others
    return file;
}

}  // namespace

HarFile::HarFile(const std::string& path) : path_(path), file_(openFile(path)) {
    if (!write(kBegin, kEnd)) throw Failure(ExitCode::Failed, path + ": " + problem_);
}

void HarFile::add(const Json::Value& entry) {
    const std::string text = compactJson(entry);
    const std::lock_guard lock(mutex_);
    if (problem_.empty() && size_ + text.size() > kMostBytes)
        problem_ = "it has " + std::to_string(kMostBytes >> 20U) + " MB";
    if (!problem_.empty() || !write((hasEntries_ ? ",\n" : "\n") + text, kEnd)) {
        ++missing_;
        return;
    }
    hasEntries_ = true;
}

std::string HarFile::problem() const {
    const std::lock_guard lock(mutex_);
    if (missing_ == 0) return "";
    return path_ + " lacks the last " + std::to_string(missing_) + " exchanges: " + problem_;
}

// The new text overwrites what ended the archive, in one go with the new end.
bool HarFile::write(const std::string& text, const std::string& end) {
    const std::string bytes = text + end;
    size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = pwrite(file_.get(), bytes.data() + written, bytes.size() - written,
                                     static_cast<off_t>(size_ + written));
        if (count > 0) {
            written += static_cast<size_t>(count);
        } else if (errno != EINTR) {
            problem_ = std::strerror(errno);  // the disk may be full: back to what was whole
            if (ftruncate(file_.get(), static_cast<off_t>(size_)) == 0 &&
                pwrite(file_.get(), end.data(), end.size(), static_cast<off_t>(size_)) < 0)
                problem_ += "; the file is not complete";
            return false;
        }
    }
    size_ += text.size();
    return true;
}

}  // namespace host
