// velta-host demo: the plug-in at work on simulated devices, from the first request to the return after a
// power cut.

#include <curl/curl.h>
#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <variant>

#include "answer.h"
#include "commands.h"
#include "event_text.h"
#include "exchange.h"
#include "host.h"
#include "simulator.h"
#include "statuses.h"
#include "story.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kFooter = R"(
It takes about 45 s: the plug-in logs in to its devices every 15 s, and the demonstration needs three of these checks.

Examples:
  velta-host demo
  velta-host demo --pictures /tmp/demo
  velta-host demo --json)";

constexpr auto kAfterCheck = std::chrono::seconds(12);  // how late the outcome of an online check may be
constexpr auto kSoon = std::chrono::seconds(10);
constexpr auto kTick = std::chrono::milliseconds(100);
constexpr unsigned kLockSeconds = 600;
constexpr const char* kUser = "admin";
constexpr const char* kPassword = "velta-demo-1";

struct DemoOptions {
    std::string simulator;
    std::string pictures;
};

// The parts that the devices play; also their places among the simulator's devices and the host's sessions.
enum Part : size_t { kFrontDoor, kBackDoor, kStoreRoom, kParts };

struct CurlLibrary {
    CurlLibrary() { curl_global_init(CURL_GLOBAL_DEFAULT); }
    ~CurlLibrary() { curl_global_cleanup(); }
    CurlLibrary(const CurlLibrary&) = delete;
    CurlLibrary& operator=(const CurlLibrary&) = delete;
};

std::string pictureFolder(const std::string& wanted) {
    if (!wanted.empty()) return wanted;
    std::string folder = (std::filesystem::temp_directory_path() / "velta-demo-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr)
        throw Failure(ExitCode::Failed, "no folder for the pictures", "give one with --pictures");
    return folder;
}

Failure unexpected(const std::string& what) {
    return {ExitCode::Failed, what};
}

class Demo {
 public:
    Demo(const CommonOptions& common, const DemoOptions& options)
        : host_(common),
          simulator_(options.simulator.empty() ? besideProgram("velta-sim") : options.simulator, kParts,
                     kPassword, host_.waiter),
          story_(host_.console, host_.waiter),
          pictures_(pictureFolder(options.pictures)) {}

    ExitCode run() {
        introduce();
        host_.loadPlugin();
        story_.step("Plug-in loaded", [this] { return connect(); });
        story_.step("Device information", [this] { return readIdentity(); });
        story_.step("JSON request passed on", [this] {
            return readRoom("/VELTA/AccessControl/UserInfo/capabilities", "UserInfo", "maxRecordNum",
                            "persons");
        });
        story_.step("Request translated", [this] {
            return readRoom("/VELTA/AccessControl/capabilities", "AccessControlCap", "maxCardRecordNum",
                            "cards");
        });

        story_.step("Right password",
                    [this] { return expectStatus(kFrontDoor, VELTA_STATUS_ONLINE, "First online check"); });
        story_.step("Wrong password", [this] { return expectRefusal(kBackDoor, VELTA_STATUS_REFUSED); });
        story_.step("Locked user", [this] { return expectRefusal(kStoreRoom, VELTA_STATUS_LOCKED); });
        story_.step("Armed", [this] { return arm(); });
        story_.step("Somebody at the door", [this] { return expectEvent("Ada Example"); });
        story_.step("Its picture, saved", [this] { return checkPicture(); });

        seen_[kFrontDoor].reset();
        story_.step("Power cut", [this] {
            setPower(false);
            return expectStatus(kFrontDoor, VELTA_STATUS_UNKNOWN, "Power is cut; second online check");
        });
        seen_[kFrontDoor].reset();
        story_.step("Power back", [this] {
            setPower(true);
            return expectStatus(kFrontDoor, VELTA_STATUS_ONLINE, "Power is back; third online check");
        });
        story_.step("Armed again by the plug-in", [this] { return expectStreams(1); });
        story_.step("Somebody else at the door", [this] { return expectEvent("Grace Example"); });
        story_.step("Sessions destroyed", [this] {
            host_.sessions.clear();
            return expectStreams(0);
        });
        return story_.sumUp() ? ExitCode::Ok : ExitCode::Failed;
    }

 private:
    void introduce() {
        constexpr std::array<const char*, kParts> kRoles{
            "front door: right password", "back door: wrong password", "store room: the user is locked"};
        story_.tell("Three simulated devices, and a host that knows the plug-in by its headers alone:");
        for (size_t part = 0; part < kParts; ++part)
            story_.tell("  " + simulator_.devices()[part].text() + "  " + kRoles[part]);
        story_.tell("");
    }

    std::string connect() {
        Json::Value lock;
        lock["seconds"] = kLockSeconds;
        simulator_.control("/lock" + deviceQuery(kStoreRoom), lock);
        for (size_t part = 0; part < kParts; ++part) {
            const std::string wrong = part == kBackDoor ? "-wrong" : "";
            host_.add(simulator_.devices()[part]).connect({kUser, kPassword + wrong});
        }
        return host_.plugin->version() + ", three sessions connected";
    }

    std::string readIdentity() {
        const std::string answer = ask("/VELTA/System/deviceInfo");
        std::string identity;
        for (const char* name : {"deviceName", "model", "serialNumber", "firmwareVersion"}) {
            const std::string value = element(answer, name);
            if (value.empty()) throw unexpected(std::string("no \"") + name + "\" in the answer: " + answer);
            identity += (identity.empty() ? "" : ", ") + value;
        }
        return identity;
    }

    std::string readRoom(const char* path, const char* object, const char* limit, const std::string& what) {
        const std::string answer = ask(jsonUri(path));
        Json::Value json;
        if (!parseJson(answer, json) || !json[object][limit].isUInt())
            throw unexpected("no limit in the answer: " + answer);
        return "room for " + member(json[object], limit) + " " + what;
    }

    std::string ask(const std::string& uri) {
        std::string answer = host_.request(*host_.sessions[kFrontDoor], "GET", uri);
        const Verdict verdict = judgeAnswer(answer);
        if (verdict.code != ExitCode::Ok) throw unexpected(verdict.reason);
        return answer;
    }

    // Reads reports until done, or too late; a wait for an online check is counted down.
    template <typename Done>
    bool readReports(Clock::time_point until, const std::string& wait, Clock::time_point check,
                     const Done& done) {
        while (!done()) {
            host_.waiter.throwIfInterrupted();
            if (Clock::now() >= until) return false;
            if (!wait.empty() && Clock::now() < check) host_.console.countdown(wait, check);
            if (auto report = host_.inbox.take(std::min(until, Clock::now() + kTick)))
                std::visit([this](auto& one) { this->keep(one); }, *report);
        }
        return true;
    }
    void keep(const StatusReport& report) { seen_[report.session] = report; }
    void keep(const EventReport& report) {
        event_.emplace(host_.sessions[report.session]->device(), report, pictures_);
    }

    std::string expectStatus(Part part, int wanted, const std::string& wait) {
        const auto check = host_.plugin->nextCheck();
        const auto latest = Clock::now() + Plugin::kCheckPeriod + kAfterCheck;
        if (!readReports(latest, wait, check, [&] { return seen_[part].has_value(); }))
            throw unexpected("no status was reported");
        const StatusReport& report = *seen_[part];
        std::string text = "status " + std::to_string(report.status) + ": " +
                           meaningOf(report.status).meaning +
                           (report.info.empty() ? "" : " (" + report.info + ")");
        if (report.status != wanted) throw unexpected(text + "; " + std::to_string(wanted) + " was expected");
        host_.awaitStored(*host_.sessions[part], wanted);
        return text;
    }

    // Leaves the check afterwards, as a careful host does: further tries would lock the user.
    std::string expectRefusal(Part part, int wanted) {
        std::string text = expectStatus(part, wanted, "");
        host_.sessions[part]->disconnect();
        return text;
    }

    std::string arm() {
        if (const int code = host_.sessions[kFrontDoor]->arm(); code != VELTA_OK)
            throw unexpected(resultText(code));
        return expectStreams(1);
    }

    std::string expectStreams(unsigned wanted) {
        const auto streams = [this] {
            return simulator_.control("/devices" + deviceQuery(kFrontDoor))[0]["streams"].asUInt();
        };
        const auto until = Clock::now() + kSoon;
        while (streams() != wanted) {
            host_.waiter.throwIfInterrupted();
            if (Clock::now() > until)
                throw unexpected("the device counts " + std::to_string(streams()) + " subscribers");
            host_.waiter.wait(Clock::now() + kTick);
        }
        return "the device counts " + std::to_string(wanted) + (wanted == 1 ? " subscriber" : " subscribers");
    }

    std::string expectEvent(const std::string& name) {
        event_.reset();
        Json::Value order;
        order["name"] = name;
        order["doorNo"] = 1;
        order["picture"] = "medium";
        simulator_.control("/event" + deviceQuery(kFrontDoor), order);
        if (!readReports(Clock::now() + kSoon, "", {}, [this] { return event_.has_value(); }))
            throw unexpected("no event arrived");
        if (member(event_->details, "name") != name)
            throw unexpected("another event arrived: " + event_->line());
        EventView shown = *event_;
        shown.pictureFile.clear();
        return shown.line();
    }

    std::string checkPicture() {
        if (!event_) throw unexpected("there was no event");
        if (event_->pictureFile.empty()) throw unexpected("no picture: " + event_->pictureProblem);
        if (std::filesystem::file_size(event_->pictureFile) != event_->pictureBytes)
            throw unexpected(event_->pictureFile + " has another size than the picture");
        return event_->pictureFile + ", " + sizeText(event_->pictureBytes);
    }

    void setPower(bool on) {
        Json::Value order;
        order["on"] = on;
        simulator_.control("/power" + deviceQuery(kFrontDoor), order);
    }

    static std::string deviceQuery(Part part) { return "?device=" + std::to_string(part); }

    const CurlLibrary curl_;
    Host host_;
    Simulator simulator_;
    Story story_;
    const std::string pictures_;
    std::array<std::optional<StatusReport>, kParts> seen_;
    std::optional<EventView> event_;
};

}  // namespace

void addDemoCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("demo", "Show the plug-in at work on simulated devices");
    auto options = std::make_shared<DemoOptions>();
    command
        ->add_option("--sim", options->simulator,
                     "The simulated device; velta-sim beside this program otherwise")
        ->type_name("PATH");
    command
        ->add_option("--pictures", options->pictures,
                     "Folder for the pictures; a new temporary one otherwise")
        ->type_name("DIR");
    addCommonOptions(*command, common);
    command->footer(kFooter);
    command->callback(
        [&common, &run, options] { run = [&common, options] { return Demo(common, *options).run(); }; });
}

}  // namespace host
