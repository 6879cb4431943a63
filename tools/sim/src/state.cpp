#include "state.h"

#include "resources/network.h"

namespace veltasim {

State::State(const Options& options) : inventory(options.inventory), access(options) {
    const Identity& identity = options.identity;
    deviceInfo.deviceName = identity.deviceName;
    deviceInfo.deviceId = identity.deviceId;
    deviceInfo.model = identity.model;
    deviceInfo.serialNumber = identity.serialNumber;
    deviceInfo.macAddress = identity.macAddress;
    deviceInfo.firmwareVersion = identity.firmwareVersion;
    outputIsHigh.resize(inventory.ioOutputs.value_or(0));
    for (unsigned i = 0; i < inventory.networkInterfaces.value_or(0); ++i)
        networkInterfaces.push_back(firstNetworkInterface(i + 1, identity.macAddress));
}

}  // namespace veltasim
