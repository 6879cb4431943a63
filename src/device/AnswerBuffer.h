/* The memory that a device's answer is received into. */
#ifndef VELTA_DEVICE_ANSWERBUFFER_H
#define VELTA_DEVICE_ANSWERBUFFER_H

#include <cstddef>
#include <cstdint>

namespace velta {

/* Memory for one answer, not initialised: most answers touch a page or two of it. The process keeps one such
 * buffer for its next request, which then asks for no memory. Any thread. */
class AnswerBuffer {
 public:
    static constexpr uint32_t kCapacity = 1048576;

    AnswerBuffer();
    ~AnswerBuffer();
    AnswerBuffer(const AnswerBuffer&) = delete;
    AnswerBuffer& operator=(const AnswerBuffer&) = delete;

    /* Null when there is no memory. */
    char* data() const { return bytes_; }
    /* How long the answer became. A buffer of which this is not known is not kept. */
    void setLength(size_t length) { length_ = length; }

 private:
    char* bytes_;
    size_t length_ = kCapacity;
};

}  // namespace velta

#endif
