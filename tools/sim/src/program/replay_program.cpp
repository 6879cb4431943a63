#include "program/replay_program.h"

#include <fstream>
#include <iterator>
#include <memory>

#include <veltasim/recording.h>

#include "program/settings.h"

namespace veltasim {
namespace {

// Options of a device that answers for itself.
constexpr const char* kOthers[] = {"--state", "--event-every", "--picture", "--event-at-connect", "--fault"};

Recording readRecording(const ReplaySettings& settings) {
    std::ifstream file(settings.file, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    if (!file) throw BadUsage(settings.file + ": cannot be read");
    try {
        return Recording::fromHar(text, settings.device);
    } catch (const std::runtime_error& error) {
        throw BadUsage(settings.file + ": " + error.what());
    }
}

}  // namespace

void addReplayOptions(CLI::App& app, ReplaySettings& settings) {
    auto* replay = app.add_option("--replay", settings.file,
                                  "Answer as the device of this HTTP archive did (HAR, as velta-host --trace "
                                  "writes it); what it was not asked then is answered 404, and told here")
                       ->check(CLI::ExistingFile)
                       ->option_text("FILE");
    app.add_option("--replay-device", settings.device,
                   "HOST[:PORT] of the device in the archive; the first one otherwise")
        ->needs(replay);
    app.add_option("--replay-speed", settings.speed,
                   "How many times faster events come than they were recorded")
        ->needs(replay)
        ->check(CLI::Range(0.001, 1000000.0))
        ->capture_default_str();
    for (const char* other : kOthers)
        replay->excludes(app.get_option(other));
}

void prepareReplay(const ReplaySettings& settings, Options& device, Printer& printer) {
    if (settings.file.empty()) return;
    const auto recording = std::make_shared<const Recording>(readRecording(settings));
    printer.message("replay of " + recording->address + ":" + std::to_string(recording->port) + ", " +
                    std::to_string(recording->answers.size()) + " answers");
    for (const std::string& other : recording->otherDevices)
        printer.message("not replayed: " + other + " (--replay-device " + other + ")");
    device.recording = recording;
    device.replaySpeed = settings.speed;
    device.onUnrecorded = [&printer](const RequestRecord& request) {
        printer.message("not recorded: " + request.method + " " + request.target);
    };
}

}  // namespace veltasim
