// Configuration commands of hosts.
//
// Input: the command, its message.

#include "DevPlus/PluginConfig.h"

#include "support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const std::string command = input.part();
    const std::string message = input.part();
    const int result = SetConfigProcess(command.c_str(), message.c_str());
    fuzz::require(result == 0 || result == -1, "a command is done or refused");
    return 0;
}
