#include "plugin.h"

#include <dlfcn.h>
#include <json/json.h>

#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "../wait.h"

// For the sanitizer, which guesses where the thread-local data of loaded libraries lie. Depending on their
// address it takes what lies before them for a header, and fails at the end of a test on what it reads there.
// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer asks for it by this name
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
const char* __asan_default_options() {
    return "intercept_tls_get_addr=0";
}
// NOLINTEND(bugprone-reserved-identifier)

namespace host {

Library::Library() : handle_(dlopen(VELTADEV_PATH, RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) throw std::runtime_error(dlerror());
    const auto getInterface =
        reinterpret_cast<VELTA_GetPluginInterfaceFunction>(symbol(VELTA_ENTRY_GET_PLUGIN_INTERFACE));
    setConfig = reinterpret_cast<VELTA_SetConfigFunction>(symbol(VELTA_ENTRY_SET_CONFIG));
    record = static_cast<xplugin_export_interface_t*>(getInterface());
}

Library::~Library() {
    dlclose(handle_);
}

void* Library::symbol(const char* name) const {
    return dlsym(handle_, name);
}

std::string Event::jpeg() const {
    const size_t length = picture.find("Content-Length: ");
    const size_t end = picture.find("\r\n\r\n");
    if (length == std::string::npos || end == std::string::npos) return "";
    return picture.substr(end + 4, std::strtoul(picture.c_str() + length + 16, nullptr, 10));
}

Session::Session(Library& library) : library_(library) {
    const auto table = [&](const char* key) {
        void* found = nullptr;
        if (library.record->QueryInterface(instance, key, &found) != VELTA_OK) throw std::runtime_error(key);
        return found;
    };
    if (library.record->CreateInstance(&instance) != VELTA_OK) throw std::runtime_error("CreateInstance");
    connect = static_cast<VELTA_ConnectTable*>(table(VELTA_KEY_CONNECT));
    event = static_cast<VELTA_EventTable*>(table(VELTA_KEY_EVENT));
    gateway = static_cast<VELTA_GatewayTable*>(table(VELTA_KEY_GATEWAY));
    connect->SetConnStatusCallBack(instance, onStatusCallBack, this);
}

Session::~Session() {
    destroy();
}

int Session::destroy() {
    void* const dying = std::exchange(instance, nullptr);
    return library_.record->DestroyInstance(dying);
}

uint32_t Session::connectTo(uint16_t port, const std::string& user, const std::string& password,
                            const std::string& more) {
    static std::atomic<int> sessions{0};  // each has an index of its own
    std::string url = "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(port) +
                      ";DevIndex=" + std::to_string(++sessions) + ";" + more;
    return static_cast<uint32_t>(
        connect->Connect_V2(instance, url.data(), std::string(user).data(), std::string(password).data()));
}

int Session::status() const {
    int status = -99;
    connect->GetConnectStatus(instance, &status, nullptr);
    return status;
}

uint32_t Session::arm() {
    return static_cast<uint32_t>(event->SetEventCallBack(instance, onEventCallBack, this));
}

uint32_t Session::cancel() {
    return static_cast<uint32_t>(event->SetEventCallBack(instance, nullptr, nullptr));
}

std::string Session::request(const std::string& method, const std::string& uri, const std::string& body,
                             unsigned room) {
    Json::Value envelope;
    envelope["method"] = method;
    envelope["uri"] = uri;
    envelope["body"] = body;
    std::string text = envelope.toStyledString();
    std::string answer(room, '\0');
    gateway->VELTA_Getway(instance, text.data(), answer.data(), room, nullptr);
    return answer.c_str();
}

void Session::onStatusCallBack(void*, int status, char* info, void* user) {
    Session& self = *static_cast<Session*>(user);
    const std::lock_guard guard(self.mutex_);
    self.statusLog_.push_back(std::to_string(status) + " " + info);
    self.changed_.notify_all();
}

void Session::onEventCallBack(void* instance, char* sourceId, tagEVENT_BASE_INFO* base,
                              tagEVENT_EXT_INFO* ext, void* user) {
    Session& self = *static_cast<Session*>(user);
    Event event{*base, sourceId, "", instance};
    if (ext != nullptr) event.picture.assign(ext->items->data, static_cast<size_t>(ext->items->length));
    if (self.onEvent) self.onEvent(event);
    const std::lock_guard guard(self.mutex_);
    self.events_.push_back(std::move(event));
    self.changed_.notify_all();
}

// The status is stored after its callback has returned, so it is looked at again and again.
bool Session::waitForStatus(int wanted) {
    return velta_test::waitUntil([&] { return status() == wanted; });
}

bool Session::waitForEvents(size_t count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kDeadline, [&] { return events_.size() >= count; });
}

std::vector<Event> Session::events() const {
    const std::lock_guard guard(mutex_);
    return events_;
}

void Session::forgetEvents() {
    const std::lock_guard guard(mutex_);
    events_.clear();
}

std::vector<std::string> Session::statusLog() const {
    const std::lock_guard guard(mutex_);
    return statusLog_;
}

}  // namespace host
