// Connection parameters of hosts.
//
// Input: URL, user, password, and again for connecting anew.

#include "fake_device.h"
#include "manager/CVeltaDevMgr.h"

namespace {

bool isRegistered(const CVeltaDevice& device, const std::string& index) {
    CVeltaDevMgr& manager = CVeltaDevMgr::instance();
    const VXBase::ReadGuard guard(manager.deviceLock());
    return manager.getDevice(index) == &device;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    fuzz::setAnswers({{}});
    CVeltaDevice device;
    std::vector<std::string> indexes;
    do {
        std::string url = input.part();
        std::string user = input.part();
        std::string password = input.part();
        const int result = device.Connect_V2(url.data(), user.data(), password.data());
        if (result != VELTA_OK) continue;
        indexes.push_back(device.getDevIndex());
        fuzz::require(isRegistered(device, indexes.back()), "an accepted session is registered");
        fuzz::require(!user.empty() && !password.empty(), "a session has credentials");
    } while (!input.atEnd());
    fuzz::require(fuzz::exchanges() == 0, "connecting sends nothing");
    CVeltaDevMgr::instance().forgetDevice(&device);
    for (const std::string& index : indexes)
        fuzz::require(!isRegistered(device, index), "nothing points to a session that is gone");
    return 0;
}
