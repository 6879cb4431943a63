#include "device/AnswerBuffer.h"

#include <atomic>
#include <cstring>
#include <new>

namespace velta {

namespace {

// A buffer that had more in it has made pages resident that hardly any other answer needs.
constexpr size_t kMostKept = size_t{64} * 1024;

std::atomic<char*> spare{nullptr};

__attribute__((destructor)) void releaseSpare() {
    delete[] spare.exchange(nullptr);
}

}  // namespace

AnswerBuffer::AnswerBuffer() : bytes_(spare.exchange(nullptr)) {
    if (bytes_ == nullptr) bytes_ = new (std::nothrow) char[kCapacity];
}

AnswerBuffer::~AnswerBuffer() {
    if (bytes_ != nullptr && length_ <= kMostKept) {
        std::memset(bytes_, 0, length_);  // what one device said does not lie here until another answers
        bytes_ = spare.exchange(bytes_);
    }
    delete[] bytes_;
}

}  // namespace velta
