/* The plug-in for hosts in C++17: its library and its sessions as objects, texts as std::string, callbacks as
 * std::function. Nothing but the C headers and dlopen stands behind it (link with -ldl where the C library wants it).
 *
 *     velta::host::Library library("/usr/lib/x86_64-linux-gnu/veltadev/libveltadev.so");
 *     velta::host::Device device(library);
 *     device.connect("192.168.1.20", 80, "admin", password);
 *
 * Words in square brackets mean what they mean in velta.h. What goes wrong is thrown as Error. Handlers run on threads of
 * the plug-in; what they throw is dropped, since it can't pass through the plug-in. */
#ifndef VELTA_HOST_HPP
#define VELTA_HOST_HPP

#include <dlfcn.h>
#include <velta/velta.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace velta::host {

/* What a call came to: a code of result.h, or VELTA_REFUSED where there was no call. */
class Error : public std::runtime_error {
 public:
    Error(const std::string& what, int code) : std::runtime_error(what + text(code)), code_(code) {}
    explicit Error(const std::string& what) : std::runtime_error(what), code_(VELTA_REFUSED) {}
    uint32_t code() const noexcept { return static_cast<uint32_t>(code_); }

 private:
    static std::string text(int code) {
        char hex[16];
        std::snprintf(hex, sizeof hex, ": 0x%08X", static_cast<unsigned>(code));
        return hex;
    }
    int code_;
};

inline void require(int code, const char* what) {
    if (code != VELTA_OK) throw Error(what, code);
}

/* The library, started. At most one at a time, and one in the life of a process: after it the plug-in serves no device
 * any more. Lives longer than every Device made from it, and is destroyed when no other call is in it. [serialised] */
class Library {
 public:
    explicit Library(const std::string& path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (!handle_) throw Error(lastError(path));
        const auto getInterface = find<VELTA_GetPluginInterfaceFunction>(VELTA_ENTRY_GET_PLUGIN_INTERFACE);
        setConfig_ = find<VELTA_SetConfigFunction>(VELTA_ENTRY_SET_CONFIG);
        entries_ = static_cast<const xplugin_export_interface_t*>(getInterface());
        if (entries_ == nullptr) throw Error(path + " offers no interface");
        require(entries_->Init(), "the plug-in does not start");
    }
    /* Waits for what goes on in the plug-in's own threads. */
    ~Library() { entries_->Uninit(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    std::string version() const { return entries_->GetFileVersion(); }
    const xplugin_export_interface_t& entries() const noexcept { return *entries_; }

    /* One configuration command, see Plugin_SetConfig. [any thread, in event] */
    void configure(const std::string& head, const std::string& message) const {
        require(setConfig_(head.c_str(), message.c_str()), head.c_str());
    }
    /* Lets events of all devices through to the handlers; they are held back at the start. [any thread, in event] */
    void passEvents(bool on) const { configure("SetEventSub", on ? "1" : "0"); }

 private:
    struct Close {
        void operator()(void* handle) const noexcept { dlclose(handle); }
    };
    static std::string lastError(const std::string& path) {
        const char* reason = dlerror();
        return reason != nullptr ? reason : path;
    }
    template <typename Function>
    Function find(const char* name) const {
        void* const found = dlsym(handle_.get(), name);
        if (found == nullptr) throw Error(lastError(name));
        return reinterpret_cast<Function>(found);
    }

    const std::unique_ptr<void, Close> handle_;
    const xplugin_export_interface_t* entries_ = nullptr;
    VELTA_SetConfigFunction setConfig_ = nullptr;
};

/* An event, valid during the call of its handler: copy what is needed. */
struct Event {
    const tagEVENT_BASE_INFO& record;
    std::string_view sourceId;
    /* MIME headers, an empty line, the JPEG; empty for an event without picture. */
    std::string_view picturePart;

    std::string_view payload() const {
        return {record.payload, strnlen(record.payload, sizeof record.payload)};
    }
    std::string_view jpeg() const {
        constexpr std::string_view kLength = "Content-Length:";
        const size_t headers = picturePart.find("\r\n\r\n");
        const size_t length = picturePart.find(kLength);
        if (headers == std::string_view::npos || length > headers) return {};
        return picturePart.substr(headers + 4,
                                  std::strtoul(picturePart.data() + length + kLength.size(), nullptr, 10));
    }
};

/* A session with one device. Every function may be called on any thread; those of one session may overlap. */
class Device {
 public:
    /* From inside it no device may be connected, disconnected or destroyed, nor a thread waited for that does so, and
     * startEvents still finds the status that was before: use another thread. info: see connect.h. */
    using StatusHandler = std::function<void(int status, const std::string& info)>;
    /* One call at a time for all devices: a slow one delays the events of all. May destroy its own device. */
    using EventHandler = std::function<void(const Event& event)>;

    explicit Device(Library& library) : entries_(library.entries()), index_(nextIndex()) {
        require(entries_.CreateInstance(&instance_), "no session");
        try {
            connect_ = table<VELTA_ConnectTable>(VELTA_KEY_CONNECT);
            event_ = table<VELTA_EventTable>(VELTA_KEY_EVENT);
            gateway_ = table<VELTA_GatewayTable>(VELTA_KEY_GATEWAY);
        } catch (...) {
            entries_.DestroyInstance(instance_);
            throw;
        }
    }
    /* After it no handler runs or will run, but for the event handler that it is called from. It waits for handlers and
     * calls under way: hold no lock that a handler wants. [any thread, not in status, in event] */
    ~Device() { entries_.DestroyInstance(instance_); }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /* Replaces the handler; an empty one ends the reports. When it returns the former one is not running and will not
     * run again, unless it is the caller. [any thread] */
    void onStatus(StatusHandler handler) {
        status_.set(std::move(handler));
        require(connect_->SetConnStatusCallBack(instance_, statusChanged, this), "onStatus");
    }

    /* Registers the device for the online check, which comes every 15 s; its result is the status.
     * [any thread, not in status, in event] */
    void connect(const std::string& address, uint16_t port, std::string user, std::string password) {
        if (address.find(';') != std::string::npos)
            throw Error("connect", static_cast<int>(VELTA_E_BAD_PARAMETER));
        std::string url = "Connect=TCP/IP;Target=" + address + ";Port=" + std::to_string(port) +
                          ";DevIndex=" + std::to_string(index_) + ";";
        require(connect_->Connect_V2(instance_, url.data(), user.data(), password.data()), "connect");
    }
    /* Ends the checks and the events; connect starts anew. [any thread, not in status, in event] */
    void disconnect() { require(connect_->DisConnect(instance_), "disconnect"); }

    /* One of VELTA_STATUS_... */
    int status() const {
        int status = VELTA_STATUS_UNKNOWN;
        require(connect_->GetConnectStatus(instance_, &status, nullptr), "status");
        return status;
    }

    /* Opens the device's alert stream, or gives the open one another handler. The plug-in closes and opens it as the
     * device goes and comes. Throws VELTA_E_OFFLINE when the device is not online. [any thread, in event] */
    void startEvents(EventHandler handler) {
        events_.set(std::move(handler));
        require(event_->SetEventCallBack(instance_, eventArrived, this), "startEvents");
    }
    /* No event that comes later reaches the handler. True when it is not running any more either, unless it is the
     * caller; false when the plug-in could not tell, since the device is offline or was not armed. [any thread, in event] */
    bool stopEvents() {
        events_.set(nullptr);
        return event_->SetEventCallBack(instance_, nullptr, nullptr) == VELTA_OK;
    }

    /* One request to the device; its answer, or the status of what went wrong. Blocks, see gateway.h.
     * The plug-in cuts an answer that is longer than the buffer. A GET is then sent again with more room; another
     * request, which the device has carried out, throws: give it more room from the start. [any thread, in event] */
    std::string request(const std::string& method, const std::string& uri, const std::string& body = "",
                        unsigned room = 1U << 20) const {
        std::string envelope = R"({"method":)" + quoted(method) + R"(,"uri":)" + quoted(withIndex(uri)) +
                               R"(,"body":)" + quoted(body) + "}";
        return answer("request", room, method == "GET" ? kMostRoom : room, [&](char* buffer, unsigned size) {
            return gateway_->VELTA_Getway(instance_, envelope.data(), buffer, size, nullptr);
        });
    }
    /* The device's identity, state and channels as JSON. Blocks for up to seven requests. [any thread, in event] */
    std::string inventory() const {
        return answer("inventory", 1U << 20, kMostRoom, [&](char* buffer, unsigned size) {
            return gateway_->DeviceLoop(instance_, buffer, size);
        });
    }

 private:
    static constexpr unsigned kMostRoom = 1U << 26;

    /* A handler that may be replaced while it runs: each call keeps the one that it started with. */
    template <typename Handler>
    class Slot {
     public:
        void set(Handler handler) {
            auto fresh = handler ? std::make_shared<const Handler>(std::move(handler)) : nullptr;
            const std::lock_guard guard(mutex_);
            handler_.swap(fresh);
        }
        template <typename... Arguments>
        void call(Arguments&&... arguments) noexcept {
            try {
                const std::shared_ptr<const Handler> handler = get();
                if (handler) (*handler)(std::forward<Arguments>(arguments)...);
            } catch (...) {  // the plug-in's threads know no exceptions
            }
        }

     private:
        std::shared_ptr<const Handler> get() {
            const std::lock_guard guard(mutex_);
            return handler_;
        }
        std::mutex mutex_;
        std::shared_ptr<const Handler> handler_; /* guarded by mutex_ */
    };

    template <typename Table>
    const Table* table(const char* key) const {
        void* found = nullptr;
        require(entries_.QueryInterface(instance_, key, &found), key);
        return static_cast<const Table*>(found);
    }

    template <typename Call>
    static std::string answer(const char* what, size_t room, size_t most, Call call) {
        for (;;) {
            std::string buffer(room, '\0');
            require(call(buffer.data(), static_cast<unsigned>(room)), what);
            buffer.resize(strnlen(buffer.data(), room));
            if (buffer.size() + 1 < room) return buffer;
            room = room * 4 + 4;
            if (room > most) throw Error(std::string(what) + ": the answer is too long");
        }
    }

    static std::string quoted(const std::string& text) {
        std::string json = "\"";
        for (const char c : text) {
            char escaped[8] = {c, '\0'};
            if (c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20)
                std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
            json += escaped;
        }
        return json + '"';
    }
    /* The parameter that every request of a host has, and that the plug-in takes out again. */
    static std::string withIndex(const std::string& uri) {
        const bool hasQuery = uri.find('?') != std::string::npos;
        if (uri.find("?devIndex=") != std::string::npos || uri.find("&devIndex=") != std::string::npos)
            return uri;
        return uri + (hasQuery ? "&" : "?") + "devIndex=1";
    }

    static void statusChanged(void*, int status, char* info, void* self) {
        static_cast<Device*>(self)->status_.call(status, info != nullptr ? info : "");
    }
    /* Nothing of the device is touched behind the handler, which may have destroyed it. */
    static void eventArrived(void*, char* sourceId, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext,
                             void* self) {
        Event event{*base, sourceId != nullptr ? sourceId : "", {}};
        if (ext != nullptr && ext->kind == VELTA_EXT_PICTURE && ext->itemCount > 0 &&
            ext->items[0].length > 0)
            event.picturePart = {ext->items[0].data, static_cast<size_t>(ext->items[0].length)};
        static_cast<Device*>(self)->events_.call(event);
    }

    /* The plug-in keeps one device under each index. */
    static unsigned nextIndex() {
        static std::atomic<unsigned> last{0};
        return ++last;
    }

    const xplugin_export_interface_t& entries_;
    const unsigned index_;
    Slot<StatusHandler> status_;
    Slot<EventHandler> events_;
    void* instance_ = nullptr;
    const VELTA_ConnectTable* connect_ = nullptr;
    const VELTA_EventTable* event_ = nullptr;
    const VELTA_GatewayTable* gateway_ = nullptr;
};

}  // namespace velta::host

#endif
