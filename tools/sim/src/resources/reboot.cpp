#include "resources/resource.h"

namespace veltasim {

Reply putReboot(const Call& call) {
    Reply reply = done(call);
    reply.thenReboot = true;
    return reply;
}

}  // namespace veltasim
