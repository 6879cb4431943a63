#pragma once

#include <list>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include <veltasim/fault.h>

namespace veltasim {

// The faults in force. [any thread]
class Faults {
 public:
    enum class Moment { Answer, StreamOpening, StreamPart };

    void add(const Fault& fault);
    void clear(std::optional<FaultKind> kind);  // nothing: all
    std::vector<Fault> all() const;
    // The fault that strikes now, with the default amount filled in; counts it as used.
    std::optional<Fault> strike(std::string_view path, Moment moment);

 private:
    mutable std::mutex mutex_;
    std::list<Fault> faults_;  // guarded by mutex_
};

}  // namespace veltasim
