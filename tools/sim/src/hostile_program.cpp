#include "hostile_program.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>

#include <veltasim/hostile.h>

#include "program/settings.h"

namespace veltasim {
namespace {

constexpr std::string_view kList = "list";
constexpr std::array<std::string_view, 3> kCompanions{"--hostile", "--port", "--bind"};

std::string complaint(const std::string& trick) {
    const std::vector<HostileTrick> tricks = hostileTricks();
    const bool known = trick == kList || std::ranges::count(tricks, trick, &HostileTrick::name) > 0;
    return known ? "" : "no such trick: " + trick + " (--hostile list shows them)";
}

int printTricks() {
    for (const HostileTrick& trick : hostileTricks())
        std::cout << std::left << std::setw(27) << trick.name << trick.meaning << '\n';
    return 0;
}

}  // namespace

void addHostileOption(CLI::App& app, std::string& trick) {
    app.add_option(
           "--hostile", trick,
           "Instead of all that, a device that plays this trick on its client; list: shows the tricks")
        ->check(complaint)
        ->option_text("TRICK");
}

int runHostile(const CLI::App& app, const std::string& trick, const Options& options, const Fd& signals) {
    for (const CLI::Option* option : app.get_options()) {
        if (option->count() > 0 && std::ranges::count(kCompanions, option->get_name()) == 0)
            throw BadUsage("--hostile does not go with " + option->get_name());
    }
    if (trick == kList) return printTricks();
    HostileDevice device(trick, options.port, options.bindAddress);
    device.start();
    std::cout << "hostile  http://" << options.bindAddress << ':' << device.port() << "  " << trick
              << std::endl;
    pollfd file{signals.get(), POLLIN, 0};
    while (file.revents == 0)
        poll(&file, 1, -1);
    std::cout << "connections: " << device.connections() << ", bytes sent: " << device.bytesSent()
              << std::endl;
    return 0;
}

}  // namespace veltasim
