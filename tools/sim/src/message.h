#pragma once

#include <optional>
#include <string>

#include <veltasim/fault.h>

#include "outlets.h"

namespace veltasim {

// An answer or a part of a stream, apart from its Content-Length.
struct Message {
    std::string head;  // complete header lines
    std::string body;
    std::string tail;  // what follows the body, parts of its own included
};

// The message on the wire, with what the fault does to it.
Chunk toChunk(Message message, const std::optional<Fault>& fault);

}  // namespace veltasim
