#include "program/settings.h"

#include <array>
#include <cmath>
#include <fstream>
#include <map>

namespace veltasim {
namespace {

constexpr const char* kExamples = R"(
Examples:
  velta-sim                                   one device on a free port of 127.0.0.1
  velta-sim --port 8080 --event-every 2 --picture
                                              somebody at the door every two seconds
  velta-sim --port 8080 --panel-port 8090     the device with a panel at http://127.0.0.1:8090/
  velta-sim --fault slow=200,path=/VELTA/System,count=3
                                              three slow answers, then all is well
  velta-sim --port 8080 --replay door.har     answers as the device did of which velta-host --trace door.har kept a trace
  velta-sim --count 500 --port 20000 --quiet  five hundred devices
  velta-sim --console --state door.json       obeys commands ("help" lists them), and remembers what it was taught
  curl --digest -u admin:velta-sim-1 http://127.0.0.1:8080/VELTA/System/deviceInfo
  curl -d '{"doorNo":2,"picture":"small"}' http://127.0.0.1:8081/control/event    (with --control-port 8081)

Faults: KIND[=AMOUNT][,path=PREFIX][,count=N]
  hang-before, hang-midway, drop, wrong-length[=BYTES], malformed, http-error[=STATUS], status[=ERROR_CODE],
  slow[=BYTES_PER_SECOND], stale-nonce

Exit codes: 0 ended by Ctrl-C or SIGTERM, 2 wrong options or state, 3 cannot start (for example the port is taken)
or cannot save the state.)";

constexpr size_t kMaxRecordedAnswer = 16U << 10U;

struct Limit {
    const char* option;
    unsigned Capacity::*value;
    const char* help;
};

constexpr std::array kLimits{
    Limit{"--max-persons", &Capacity::persons, "Persons that it can hold"},
    Limit{"--max-cards", &Capacity::cards, "Cards"},
    Limit{"--max-faces", &Capacity::faces, "Faces"},
    Limit{"--max-fingerprints", &Capacity::fingerprints, "Fingerprints"},
    Limit{"--max-cards-per-person", &Capacity::cardsPerPerson, "Cards of one person"},
    Limit{"--max-fingerprints-per-person", &Capacity::fingerprintsPerPerson, "Fingerprints of one person"},
    Limit{"--max-events", &Capacity::events, "Events in the log"},
    Limit{"--max-event-hosts", &Capacity::eventHosts, "Notification hosts"},
};

void addCapacity(CLI::App& app, Capacity& capacity) {
    for (const Limit& limit : kLimits)
        app.add_option(limit.option, capacity.*limit.value, limit.help)->capture_default_str();
}

}  // namespace

void addOptions(CLI::App& app, Settings& settings) {
    static const std::map<std::string, AuthScheme> kSchemes{{"digest", AuthScheme::Digest},
                                                            {"digest-sha256", AuthScheme::DigestSha256},
                                                            {"basic", AuthScheme::Basic},
                                                            {"none", AuthScheme::None}};
    Options& device = settings.device;
    app.add_option("--port", device.port, "Port of the (first) device; 0: any free one, for each")
        ->capture_default_str();
    app.add_option("--bind", device.bindAddress, "IPv4 address to listen on")->capture_default_str();
    app.add_option("--count", settings.count, "Number of devices, on consecutive ports from --port on")
        ->check(CLI::Range(1, 5000))
        ->capture_default_str();
    app.add_option("--user", device.user, "User name")->capture_default_str();
    auto* password = app.add_option("--password", device.password, "Password")->capture_default_str();
    app.add_option("--password-file", settings.passwordFile, "File whose first line is the password")
        ->check(CLI::ExistingFile)
        ->excludes(password);
    app.add_option("--auth", device.auth, "How clients log in: digest, digest-sha256, basic or none")
        ->transform(CLI::CheckedTransformer(kSchemes))
        ->option_text("SCHEME=digest");
    app.add_option("--max-failed-logins", device.maxFailedLogins,
                   "Failed log-ins that lock the user; 0: never")
        ->capture_default_str();
    app.add_option("--lock-seconds", settings.lockSeconds, "How long the lock lasts")->capture_default_str();
    app.add_option("--max-streams", device.maxStreams, "Subscribers of the alert stream")
        ->capture_default_str();
    app.add_option("--heartbeat", settings.heartbeat, "Seconds between heartbeats; 0: none")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    app.add_option("--reboot-seconds", settings.rebootSeconds, "How long a reboot takes")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    app.add_option("--doors", device.doors, "Doors, each with a reader")
        ->check(CLI::Range(1, 64))
        ->capture_default_str();
    app.add_option("--door-seconds", settings.doorSeconds, "How long a door stays open")
        ->check(CLI::Range(1, 255))
        ->capture_default_str();
    app.add_option("--background-seconds", settings.backgroundSeconds,
                   "How long deleting persons or taking a fingerprint goes on")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    addCapacity(app, device.capacity);
    app.add_option(
        "--state", settings.stateFile,
        "File with persons and all else that the device remembers: read at the start if it is there, written "
        "at the end");
    app.add_flag("--console", settings.console,
                 "Obey commands from standard input; on a terminal they are obeyed anyway");
    app.add_option("--event-every", settings.eventEvery, "Seconds between access events; 0: none")
        ->check(CLI::NonNegativeNumber);
    app.add_flag("--picture", settings.picture, "Access events carry a picture");
    app.add_flag("--event-at-connect", settings.eventAtConnect, "An event waits for each new subscriber");
    app.add_option("--fault", settings.faults, "A fault to start with (see below); may be repeated")
        ->check([](const std::string& spec) { return parseFault(spec) ? "" : "not a fault: " + spec; });
    app.add_option("--control-port", settings.controlPort,
                   "Port of the control interface on 127.0.0.1; 0: a free one")
        ->check(CLI::Range(0, 65535));
    auto* panel =
        app.add_option("--panel-port", settings.panelPort,
                       "Port of the panel, a web page with all that the devices do; 0: a free one. On a "
                       "terminal there is a panel anyway, on a free port")
            ->check(CLI::Range(0, 65535));
    auto* address = app.add_option("--panel-bind", settings.panelAddress,
                                   "IPv4 address of the panel; whoever reaches it steers the devices")
                        ->needs(panel)
                        ->capture_default_str();
    app.add_flag("--no-panel", settings.noPanel, "No panel")->excludes(panel)->excludes(address);
    app.add_flag("--quiet", settings.quiet, "Do not print requests");
    app.add_flag("--json", settings.json, "Print JSON lines");
    app.footer(kExamples);
}

AccessEvent doorEvent(const Settings& settings) {
    AccessEvent event;
    if (settings.picture) event.picture = picture(PictureSize::Medium);
    return event;
}

void complete(Settings& settings, bool onTerminal) {
    using std::chrono::milliseconds;
    settings.device.heartbeat = milliseconds(std::llround(settings.heartbeat * 1000));
    settings.device.rebootTime = milliseconds(std::llround(settings.rebootSeconds * 1000));
    settings.device.doorOpenTime = std::chrono::seconds(settings.doorSeconds);
    settings.device.backgroundTime = milliseconds(std::llround(settings.backgroundSeconds * 1000));
    settings.device.lockTime = std::chrono::seconds(settings.lockSeconds);
    if (settings.eventAtConnect) settings.device.eventAtConnect = doorEvent(settings);
    if (settings.panelPort < 0 && onTerminal && !settings.noPanel) settings.panelPort = 0;
    if (settings.panelPort >= 0) settings.device.maxRecordedAnswer = kMaxRecordedAnswer;
    if (settings.device.port != 0 && settings.device.port + settings.count - 1 > UINT16_MAX)
        throw BadUsage("there are not so many ports above " + std::to_string(settings.device.port));
    if (!settings.stateFile.empty() && settings.count > 1)
        throw BadUsage("--state is for one device, not for " + std::to_string(settings.count));
    if (!settings.passwordFile.empty()) {
        std::ifstream file(settings.passwordFile);
        if (!std::getline(file, settings.device.password))
            throw BadUsage(settings.passwordFile + ": cannot read a password");
    }
}

}  // namespace veltasim
