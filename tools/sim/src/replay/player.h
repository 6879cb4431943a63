// Which recorded answer a request gets.
#pragma once

#include <json/value.h>

#include <vector>

#include <veltasim/recording.h>
#include <veltasim/request.h>

namespace veltasim {

// [loop thread]
class Player {
 public:
    explicit Player(const Recording& recording);

    // The answers to a method, path and query come in recorded order, the last one again and again; where requests
    // with such a body were recorded, only theirs. Null: there is none.
    const RecordedAnswer* next(const RequestRecord& request);

 private:
    const Recording& recording_;
    std::vector<bool> used_;
    std::vector<Json::Value> bodies_;  // of the recorded requests; null: not JSON
};

}  // namespace veltasim
