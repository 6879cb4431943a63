#include "plugin.h"

#include <dlfcn.h>

#include <cstring>
#include <exception>
#include <utility>

#include "failure.h"
#include "text.h"

namespace host {
namespace {

constexpr auto kClockTolerance = std::chrono::milliseconds(500);
constexpr size_t kAnswerSize = size_t{4} << 20U;

struct ResultName {
    uint32_t code;
    const char* name;
};
constexpr ResultName kResultNames[] = {
    {static_cast<uint32_t>(VELTA_REFUSED), "refused in this state"},
    {static_cast<uint32_t>(VELTA_NO_SUCH_INTERFACE), "no such interface"},
    {VELTA_E_OFFLINE, "the device is not online"},
    {VELTA_E_NOT_BOUND, "not bound to an instance"},
    {VELTA_E_NOT_SUPPORTED, "not supported"},
    {VELTA_E_NULL_PARAMETER, "a parameter is missing"},
    {VELTA_E_BAD_PARAMETER, "a value is malformed or out of range"},
    {VELTA_E_OUT_OF_MEMORY, "out of memory"},
    {VELTA_E_NO_INTERFACE, "an interface is missing"},
};

struct LogLevel {
    const char* name;
    int threshold;
};
constexpr LogLevel kLogLevels[] = {{"debug", 2}, {"info", 3}, {"warning", 4}, {"error", 5}, {"off", 6}};
using SetLogLevel = void (*)(int threshold);

std::string loadError(const std::string& path) {
    const char* reason = dlerror();
    return "cannot load the plug-in: " + (reason != nullptr ? std::string(reason) : path);
}

void require(int code, const std::string& what) {
    if (code != VELTA_OK) throw Failure(ExitCode::Failed, what + ": " + resultText(code));
}

// Items of a connection URL end with ";", so no value can hold one; addresses do not.
std::string connectionUrl(const DeviceAddress& device, size_t number) {
    return "Connect=TCP/IP;Target=" + device.name + ";Port=" + std::to_string(device.port) +
           ";DevIndex=" + std::to_string(number) + ";ResType=0;";
}

// The contract takes texts as char*, but does not write into them.
char* writable(std::string& text) {
    return text.data();
}

}  // namespace

std::string resultText(int code) {
    std::string text = hexText(static_cast<unsigned>(code));
    for (const ResultName& row : kResultNames) {
        if (row.code == static_cast<uint32_t>(code)) text += std::string(" (") + row.name + ")";
    }
    return text;
}

std::vector<std::string> logLevelNames() {
    std::vector<std::string> names;
    for (const LogLevel& row : kLogLevels)
        names.emplace_back(row.name);
    return names;
}

void Plugin::CloseLibrary::operator()(void* library) const {
    dlclose(library);
}

template <typename Function>
Function Plugin::find(const char* name) const {
    return reinterpret_cast<Function>(dlsym(library_.get(), name));
}

Plugin::Plugin(const std::string& path, const std::string& logLevel)
    : library_(dlopen(path.c_str(), RTLD_NOW)) {
    constexpr const char* kHint = "give its place with --library PATH";
    if (!library_) throw Failure(ExitCode::NoLibrary, loadError(path), kHint);
    const auto getInterface = find<VELTA_GetPluginInterfaceFunction>(VELTA_ENTRY_GET_PLUGIN_INTERFACE);
    setConfig_ = find<VELTA_SetConfigFunction>(VELTA_ENTRY_SET_CONFIG);
    if (getInterface == nullptr || setConfig_ == nullptr)
        throw Failure(ExitCode::NoLibrary, path + " is a library, but not this plug-in", kHint);
    setLogLevel(logLevel);

    entries_ = static_cast<const xplugin_export_interface_t*>(getInterface());
    if (entries_ == nullptr) throw Failure(ExitCode::NoLibrary, path + " offers no interface");
    started_ = Clock::now();
    if (const int code = entries_->Init(); code != VELTA_OK)
        throw Failure(ExitCode::NoLibrary, "the plug-in does not start: " + resultText(code),
                      "see --log-level info");
    if (setConfig_("SetEventSub", "1") != VELTA_OK) {
        entries_->Uninit();
        throw Failure(ExitCode::NoLibrary, "the plug-in refuses to pass events on");
    }
}

Plugin::~Plugin() {
    entries_->Uninit();
}

std::string Plugin::version() const {
    return entries_->GetFileVersion();
}

int Plugin::setConfig(const std::string& head, const std::string& message) const {
    return setConfig_(head.c_str(), message.c_str());
}

void Plugin::setLogLevel(const std::string& level) const {
    const auto set = find<SetLogLevel>("xlog_set_level");
    if (set == nullptr) return;  // a plug-in that logs into a platform's own log
    for (const LogLevel& row : kLogLevels) {
        if (level == row.name) set(row.threshold);
    }
}

// The plug-in's timer runs by itself: a check that is due at this moment may be over.
Clock::time_point Plugin::nextCheck() const {
    const auto periods = (Clock::now() + kClockTolerance - started_) / kCheckPeriod;
    return started_ + (periods + 1) * kCheckPeriod;
}

template <typename Table>
const Table* Session::table(const char* key) const {
    void* found = nullptr;
    entries_.QueryInterface(instance_, key, &found);
    if (found == nullptr)
        throw Failure(ExitCode::NoLibrary, std::string("the plug-in has no interface \"") + key + "\"");
    return static_cast<const Table*>(found);
}

Session::Session(const Plugin& plugin, size_t number, DeviceAddress device, Inbox& inbox)
    : entries_(plugin.entries()), number_(number), device_(std::move(device)), inbox_(inbox) {
    require(entries_.CreateInstance(&instance_), "no session for " + device_.text());
    try {
        connect_ = table<VELTA_ConnectTable>(VELTA_KEY_CONNECT);
        event_ = table<VELTA_EventTable>(VELTA_KEY_EVENT);
        gateway_ = table<VELTA_GatewayTable>(VELTA_KEY_GATEWAY);
    } catch (const Failure&) {
        entries_.DestroyInstance(instance_);
        throw;
    }
    connect_->SetConnStatusCallBack(instance_, onStatus, this);
}

Session::~Session() {
    entries_.DestroyInstance(instance_);
}

void Session::connect(const Credentials& credentials) {
    std::string url = connectionUrl(device_, number_);
    std::string user = credentials.user;
    std::string password = credentials.password;
    const int code = connect_->Connect_V2(instance_, writable(url), writable(user), writable(password));
    if (static_cast<uint32_t>(code) == VELTA_E_BAD_PARAMETER)
        throw Failure(ExitCode::WrongUsage, "the plug-in does not accept the address or the credentials",
                      "user and password are required, " + std::to_string(VELTA_MAX_CREDENTIALS) +
                          " bytes together at most");
    require(code, "cannot connect to " + device_.text());
}

void Session::disconnect() {
    connect_->DisConnect(instance_);
}

int Session::status() const {
    int status = VELTA_STATUS_UNKNOWN;
    require(connect_->GetConnectStatus(instance_, &status, nullptr), "no status of " + device_.text());
    return status;
}

int Session::arm() {
    return event_->SetEventCallBack(instance_, onEvent, this);
}

std::string Session::request(const std::string& envelope) const {
    std::string request = envelope;
    std::vector<char> answer(kAnswerSize);
    require(gateway_->VELTA_Getway(instance_, writable(request), answer.data(), kAnswerSize, nullptr),
            "the plug-in does not pass requests on");
    return {answer.data(), strnlen(answer.data(), answer.size())};
}

std::string Session::inventory() const {
    std::vector<char> answer(kAnswerSize);
    const int code = gateway_->DeviceLoop(instance_, answer.data(), kAnswerSize);
    if (static_cast<uint32_t>(code) == VELTA_E_NOT_SUPPORTED)
        throw Failure(ExitCode::Failed, "this plug-in does not give an inventory: " + resultText(code),
                      "velta-host request GET /VELTA/System/deviceInfo shows at least the device's identity");
    if (code != VELTA_OK)
        throw Failure(ExitCode::Failed, "no inventory of " + device_.text() + ": " + resultText(code),
                      "velta-host status tells whether the device is reached at all");
    return {answer.data(), strnlen(answer.data(), answer.size())};
}

void Session::onStatus(void*, int status, char* info, void* user) {
    const Session& session = *static_cast<Session*>(user);
    try {
        session.inbox_.put(StatusReport{session.number_, status, info != nullptr ? info : ""});
    } catch (const std::exception&) {  // no memory; the next change will tell
    }
}

void Session::onEvent(void*, char* sourceId, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext, void* user) {
    const Session& session = *static_cast<Session*>(user);
    if (base == nullptr) return;
    try {
        EventReport report{session.number_, sourceId != nullptr ? sourceId : "", *base, ""};
        if (ext != nullptr && ext->kind == VELTA_EXT_PICTURE && ext->itemCount > 0 &&
            ext->items[0].length > 0)
            report.picturePart.assign(ext->items[0].data, static_cast<size_t>(ext->items[0].length));
        session.inbox_.put(std::move(report));
    } catch (const std::exception&) {  // no memory for a copy
    }
}

}  // namespace host
