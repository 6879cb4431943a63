#include "library.h"

#include <dlfcn.h>
#include <json/json.h>

#include <algorithm>
#include <atomic>
#include <utility>

namespace check {
namespace {

constexpr size_t kAnswerSize = size_t{2} << 20U;

template <typename Table>
const Table* queried(Trial& trial, const xplugin_export_interface_t& record, void* instance,
                     const char* key) {
    void* table = nullptr;
    const int code = record.QueryInterface(instance, key, &table);
    trial.must(trial.code(std::string("QueryInterface of \"") + key + "\"", VELTA_OK, code) &&
               trial.holds(std::string("\"") + key + "\" has a table", table != nullptr));
    return static_cast<const Table*>(table);
}

}  // namespace

Library::Library(Trial& trial)
    : trial_(trial), handle_(dlopen(trial.libraryPath().c_str(), RTLD_NOW | RTLD_LOCAL)) {
    trial.must(trial.holds("the library can be loaded", handle_ != nullptr));
}

Library::~Library() {
    dlclose(handle_);
}

void* Library::find(const std::string& name) const {
    return dlsym(handle_, name.c_str());
}

void* Library::required(const std::string& name) const {
    void* const found = find(name);
    trial_.must(trial_.holds("the library exports " + name, found != nullptr));
    return found;
}

const xplugin_export_interface_t& Library::record() const {
    const auto* record = static_cast<const xplugin_export_interface_t*>(
        entry<VELTA_GetPluginInterfaceFunction>(VELTA_ENTRY_GET_PLUGIN_INTERFACE)());
    trial_.must(trial_.holds("XPLUGIN_GetPluginInterface gives a record", record != nullptr));
    return *record;
}

Plugin::Plugin(Trial& trial) : trial_(trial), library_(trial), record_(library_.record()) {
    trial.must(trial.code("Init", VELTA_OK, record_.Init()));
    isRunning_ = true;
}

Plugin::~Plugin() {
    if (isRunning_) stop();
}

int Plugin::setConfig(const char* head, const char* message) const {
    return library_.entry<VELTA_SetConfigFunction>(VELTA_ENTRY_SET_CONFIG)(head, message);
}

void Plugin::passEvents() const {
    trial_.must(
        trial_.code("Plugin_SetConfig(\"SetEventSub\", \"1\")", VELTA_OK, setConfig("SetEventSub", "1")));
}

int Plugin::stop() {
    isRunning_ = false;
    return record_.Uninit();
}

Session::Session(Trial& trial, const Plugin& plugin) : trial_(trial), record_(plugin.record()) {
    trial.must(trial.code("CreateInstance", VELTA_OK, record_.CreateInstance(&instance_)) &&
               trial.holds("CreateInstance gives a handle", instance_ != nullptr));
    connect_ = queried<VELTA_ConnectTable>(trial, record_, instance_, "Device.IConnect_V2");
    event_ = queried<VELTA_EventTable>(trial, record_, instance_, "Device.IEvent");
    gateway_ = queried<VELTA_GatewayTable>(trial, record_, instance_, "Device.IVELTA");
    trial.code("SetConnStatusCallBack", VELTA_OK,
               connect_->SetConnStatusCallBack(instance_, Inbox::onStatusCallBack, &inbox_));
}

Session::~Session() {
    destroy();
}

int Session::destroy() {
    return record_.DestroyInstance(std::exchange(instance_, nullptr));
}

int Session::connect(const Target& target) const {
    static std::atomic<int> sessions{0};
    const std::string index = target.index.empty() ? std::to_string(++sessions) : target.index;
    return connectUrl("Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(target.port) +
                          ";DevIndex=" + index + ";" + target.more,
                      target.user, target.password);
}

int Session::connectUrl(std::string url, std::string user, std::string password) const {
    return connect_->Connect_V2(instance_, url.data(), user.data(), password.data());
}

void Session::mustConnect(const Target& target) const {
    trial_.must(trial_.code("Connect_V2", VELTA_OK, connect(target)));
}

int Session::status() const {
    int status = 0;
    trial_.code("GetConnectStatus", VELTA_OK, connect_->GetConnectStatus(instance_, &status, nullptr));
    return status;
}

void Session::mustReach(int wanted) const {
    trial_.must(trial_.becomes("the session reaches the status " + std::to_string(wanted),
                               [&] { return status() == wanted; }));
}

int Session::arm(Inbox& inbox) const {
    return event_->SetEventCallBack(instance_, Inbox::onEventCallBack, &inbox);
}

int Session::cancel() const {
    return event_->SetEventCallBack(instance_, nullptr, nullptr);
}

std::string Session::request(const std::string& method, const std::string& uri,
                             const std::string& body) const {
    Json::Value envelope;
    envelope["method"] = method;
    envelope["uri"] = uri;
    envelope["body"] = body;
    return ask(envelope.toStyledString());
}

std::string Session::ask(std::string envelope) const {
    std::vector<char> answer(kAnswerSize);
    trial_.code("VELTA_Getway", VELTA_OK,
                gateway_->VELTA_Getway(instance_, envelope.data(), answer.data(), kAnswerSize, nullptr));
    trial_.must(trial_.holds("the answer ends with a zero", answer.back() == '\0'));
    return answer.data();
}

Scene::Scene(Trial& trial, veltasim::Options options)
    : device(std::move(options)), plugin(trial), session(trial, plugin) {
    device.start();
    session.mustConnect({device.port()});
}

std::vector<veltasim::RequestRecord> Scene::requests() const {
    std::vector<veltasim::RequestRecord> all = device.requests();
    std::erase_if(all, [](const auto& request) { return request.path() == "/VELTA/Security/userCheck"; });
    return all;
}

veltasim::RequestRecord Scene::lastRequest() const {
    const auto all = requests();
    return all.empty() ? veltasim::RequestRecord{} : all.back();
}

// A heartbeat takes what shares its chunk with it, so there are none but those that a check sends.
ArmedScene::ArmedScene(Trial& trialOfScene)
    : Scene(trialOfScene, {.heartbeat = std::chrono::milliseconds::zero()}), trial(trialOfScene) {
    plugin.passEvents();
    session.mustReach(VELTA_STATUS_ONLINE);
    trial.must(trial.code("SetEventCallBack on an online session", VELTA_OK, session.arm(inbox)) &&
               trial.becomes("an alert stream is open", [this] { return device.streamCount() == 1; }));
}

void ArmedScene::deliver(const std::string& person) {
    constexpr auto kAgain = std::chrono::seconds(2);
    Trial::Clock::time_point next = Trial::Clock::now();
    trial.must(trial.becomes("the event of " + person + " reaches the callback", [&] {
        if (Trial::Clock::now() >= next) {
            device.sendAccessEvent({.name = person});
            next = Trial::Clock::now() + kAgain;
        }
        const auto events = inbox.events();
        return std::any_of(events.begin(), events.end(),
                           [&](const Event& event) { return event.names(person); });
    }));
}

void ArmedScene::receive(size_t count) {
    trial.must(trial.becomes("event " + std::to_string(count) + " reaches the callback",
                             [&] { return inbox.events().size() >= count; }));
}

}  // namespace check
