#include "json_text.h"
#include "resources/resource.h"

namespace veltasim {

Reply getAccessControlCapabilities(const Call&) {
    JsonText functions;  // each becomes true with the resource that it speaks of
    functions.set("isSupportUserInfo", "false")
        .set("isSupportCardInfo", "false")
        .set("isSupportFaceRecognizeMode", "false")
        .set("isSupportRemoteControlDoor", "false")
        .set("isSupportAcsEvent", "false");
    return {200, kJsonType, JsonText().add("AccessControl", functions).text()};
}

}  // namespace veltasim
