// velta-sim: simulated VELTA devices to develop against.

#include <json/json.h>
#include <pthread.h>
#include <signal.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <veltasim/control.h>
#include <veltasim/device.h>

namespace {

using veltasim::AuthScheme;
using veltasim::Device;
using veltasim::RequestRecord;

constexpr int kExitBadUsage = 2;
constexpr int kExitCannotStart = 3;

constexpr const char* kExamples = R"(
Examples:
  velta-sim                                   one device on a free port of 127.0.0.1
  velta-sim --port 8080 --event-every 2 --picture
                                              somebody at the door every two seconds
  velta-sim --fault slow=200,path=/VELTA/System,count=3
                                              three slow answers, then all is well
  velta-sim --count 500 --port 20000 --quiet  five hundred devices
  curl --digest -u admin:velta-sim-1 http://127.0.0.1:8080/VELTA/System/deviceInfo
  curl -d '{"doorNo":2,"picture":"small"}' http://127.0.0.1:8081/control/event    (with --control-port 8081)

Faults: KIND[=AMOUNT][,path=PREFIX][,count=N]
  hang-before, hang-midway, drop, wrong-length[=BYTES], malformed, http-error[=STATUS], status[=ERROR_CODE],
  slow[=BYTES_PER_SECOND], stale-nonce

Exit codes: 0 ended by Ctrl-C or SIGTERM, 2 wrong options, 3 cannot start (for example the port is taken).)";

struct Settings {
    veltasim::Options device;
    unsigned count = 1;
    double eventEvery = 0;
    double heartbeat = 10;
    double rebootSeconds = 10;
    unsigned lockSeconds = 300;
    bool picture = false;
    bool eventAtConnect = false;
    bool quiet = false;
    bool json = false;
    int controlPort = -1;
    std::string passwordFile;
    std::vector<std::string> faults;
};

// Lines from several devices must not mix. A reader of the output sees each line at once.
class Printer {
 public:
    explicit Printer(const Settings& settings) : quiet_(settings.quiet), json_(settings.json) {}

    void device(const Device& device) {
        const veltasim::Options& options = device.options();
        Json::Value line;
        line["device"] = device.deviceName();
        line["url"] = device.url();
        if (options.auth != AuthScheme::None) line["user"] = options.user;
        print(line, "device   " + device.url() + "  " + device.deviceName() +
                        (options.auth == AuthScheme::None ? ", no log-in" : ", user " + options.user));
    }

    void control(const std::string& url) {
        Json::Value line;
        line["control"] = url + "/control";
        print(line, "control  " + url + "/control");
    }

    void request(const RequestRecord& record) {
        if (quiet_) return;
        const double milliseconds = static_cast<double>(record.duration.count()) / 1000;
        Json::Value line;
        line["port"] = record.devicePort;
        line["method"] = record.method;
        line["target"] = record.target;
        line["status"] = record.status;
        line["microseconds"] = Json::Int64(record.duration.count());
        std::ostringstream text;
        text << record.method << ' ' << record.target << ' ' << record.status << ' ' << std::fixed
             << std::setprecision(1) << milliseconds << " ms";
        print(line, text.str());
    }

 private:
    void print(const Json::Value& line, const std::string& text) {
        Json::StreamWriterBuilder compact;
        compact["indentation"] = "";
        const std::string out = json_ ? Json::writeString(compact, line) : text;
        const std::lock_guard lock(mutex_);
        std::cout << out << std::endl;
    }

    const bool quiet_;
    const bool json_;
    std::mutex mutex_;
};

void addOptions(CLI::App& app, Settings& settings) {
    static const std::map<std::string, AuthScheme> kSchemes{{"digest", AuthScheme::Digest},
                                                            {"digest-sha256", AuthScheme::DigestSha256},
                                                            {"basic", AuthScheme::Basic},
                                                            {"none", AuthScheme::None}};
    veltasim::Options& device = settings.device;
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
    app.add_option("--event-every", settings.eventEvery, "Seconds between access events; 0: none")
        ->check(CLI::NonNegativeNumber);
    app.add_flag("--picture", settings.picture, "Access events carry a picture");
    app.add_flag("--event-at-connect", settings.eventAtConnect, "An event waits for each new subscriber");
    app.add_option("--fault", settings.faults, "A fault to start with (see below); may be repeated")
        ->check(
            [](const std::string& spec) { return veltasim::parseFault(spec) ? "" : "not a fault: " + spec; });
    app.add_option("--control-port", settings.controlPort,
                   "Port of the control interface on 127.0.0.1; 0: a free one")
        ->check(CLI::Range(0, 65535));
    app.add_flag("--quiet", settings.quiet, "Do not print requests");
    app.add_flag("--json", settings.json, "Print JSON lines");
    app.footer(kExamples);
}

veltasim::AccessEvent doorEvent(const Settings& settings) {
    veltasim::AccessEvent event;
    if (settings.picture) event.picture = veltasim::picture(veltasim::PictureSize::Medium);
    return event;
}

void complete(Settings& settings) {
    using std::chrono::milliseconds;
    settings.device.heartbeat = milliseconds(std::llround(settings.heartbeat * 1000));
    settings.device.rebootTime = milliseconds(std::llround(settings.rebootSeconds * 1000));
    settings.device.lockTime = std::chrono::seconds(settings.lockSeconds);
    if (settings.eventAtConnect) settings.device.eventAtConnect = doorEvent(settings);
    if (settings.device.port != 0 && settings.device.port + settings.count - 1 > UINT16_MAX)
        throw std::runtime_error("there are not so many ports above " + std::to_string(settings.device.port));
    if (!settings.passwordFile.empty()) {
        std::ifstream file(settings.passwordFile);
        if (!std::getline(file, settings.device.password))
            throw std::runtime_error(settings.passwordFile + ": cannot read a password");
    }
}

std::list<Device> startDevices(const Settings& settings, Printer& printer) {
    std::list<Device> devices;
    uint16_t next = settings.device.port;
    for (unsigned i = 0; i < settings.count; ++i) {
        veltasim::Options options = settings.device;
        if (settings.count > 1) options.identity = veltasim::Identity::numbered(i);
        options.port = next;
        options.onRequest = [&printer](const RequestRecord& record) { printer.request(record); };
        Device& device = devices.emplace_back(options);
        for (const std::string& spec : settings.faults)
            device.setFault(*veltasim::parseFault(spec));
        device.start();
        printer.device(device);
        if (next != 0) ++next;
    }
    return devices;
}

// Sends the events of the timetable until a signal asks the program to end.
void runUntilSignal(const sigset_t& signals, const Settings& settings, std::list<Device>& devices) {
    const veltasim::AccessEvent event = doorEvent(settings);
    using Clock = std::chrono::steady_clock;
    const auto period = std::chrono::nanoseconds(std::llround(settings.eventEvery * 1e9));
    auto next = Clock::now() + period;
    for (;;) {
        timespec wait{3600, 0};
        if (period.count() > 0) {
            const auto left =
                std::max(std::chrono::nanoseconds(next - Clock::now()), std::chrono::nanoseconds(0));
            wait = {left.count() / 1000000000, left.count() % 1000000000};
        }
        if (sigtimedwait(&signals, nullptr, &wait) > 0) return;
        if (period.count() == 0 || Clock::now() < next) continue;
        next += period;
        for (Device& device : devices)
            device.sendAccessEvent(event);
    }
}

int run(Settings& settings) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);  // in every thread; runUntilSignal() takes them
    signal(SIGPIPE, SIG_IGN);
    veltasim::raiseOpenFileLimit();

    complete(settings);
    Printer printer(settings);
    std::list<Device> devices = startDevices(settings, printer);
    std::optional<veltasim::ControlServer> control;
    if (settings.controlPort >= 0) {
        std::vector<Device*> all;
        for (Device& device : devices)
            all.push_back(&device);
        control.emplace(all, static_cast<uint16_t>(settings.controlPort));
        printer.control(control->url());
    }
    runUntilSignal(signals, settings, devices);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    Settings settings;
    CLI::App app("Simulated VELTA devices: access controllers to develop against.", "velta-sim");
    addOptions(app, settings);
    try {
        app.parse(argc, argv);
        return run(settings);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kExitBadUsage;
    } catch (const std::exception& error) {
        std::cerr << "velta-sim: " << error.what() << '\n';
        return kExitCannotStart;
    }
}
