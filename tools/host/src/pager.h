// Where a search stands that a device answers in pages of its own choice.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <limits>

namespace host {

class Pager {
 public:
    static constexpr uint64_t kNoLimit = std::numeric_limits<uint64_t>::max();

    explicit Pager(uint64_t from = 0, uint64_t limit = kNoLimit) : position_(from), left_(limit) {}

    uint64_t position() const { return position_; }
    uint64_t pageSize() const;  // to ask for next
    bool isAtEnd() const { return isAtEnd_ || left_ == 0; }
    uint64_t total() const { return total_; }  // as the last page told it

    // A page has come: an object with "numOfMatches", "totalMatches" and "responseStatusStrg".
    void advance(const Json::Value& page);

 private:
    uint64_t position_;
    uint64_t left_;
    uint64_t total_ = 0;
    bool isAtEnd_ = false;
};

}  // namespace host
