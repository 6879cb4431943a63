/* One life of the library: loaded, used by many threads at once, left, unloaded. */
#pragma once

#include <velta/velta.h>

#include <atomic>
#include <deque>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <vector>

#include "plugin.h"
#include "site.h"

namespace stress {

class Round;
struct Slot;

/* The user pointer of a callback; lives as long as the round. */
struct Token {
    Token(Round& r, Slot& s) : round(r), slot(s) {}

    Round& round;
    Slot& slot;
    std::atomic<bool> over{false}; /* the callback must not be called any more */
};

/* The place of a session. */
struct Slot {
    std::shared_mutex gate; /* shared: inside calls for the session; alone: making and destroying it */
    size_t number = 0;
    bool restless = false; /* its sessions live for a moment; others long enough to come online */
    void* instance = nullptr;
    const VELTA_ConnectTable* connect = nullptr;
    const VELTA_EventTable* event = nullptr;
    const VELTA_GatewayTable* gateway = nullptr;

    std::mutex tokens;          /* guards what follows; no call into the library is made under it */
    std::vector<Token*> events; /* those whose SetEventCallBack has returned */
    std::vector<Token*> statuses;
    std::mutex setsStatus; /* one SetConnStatusCallBack at a time: it takes back the callback before it */
};

class Round {
 public:
    Round(Site& site, size_t slots, uint64_t seed);
    ~Round();
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;

    /* What a host thread does. Something, with some session. */
    void act(Random& random);
    /* Destroys all sessions, while events go on, and stops the plug-in. */
    void finish();

    uint64_t events() const { return events_; }

    Site& site;
    std::optional<host::Library> library;

    // Steps of the actions. The slot's gate is held as Slot::gate says.
    void create(Slot& slot);
    void destroy(Slot& slot, const char* call);
    Token& newToken(Slot& slot);
    static void onEvent(void* instance, char* sourceId, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext,
                        void* user);
    static void onStatus(void* instance, int status, char* info, void* user);

 private:
    Random& callbackRandom();

    std::deque<Slot> slots_;
    std::mutex tokensLock_;
    std::deque<Token> tokens_;
    std::shared_mutex
        callers_; /* shared: inside calls that a callback makes; alone: they are over, and no more come */
    std::atomic<uint64_t> events_{0};
    std::atomic<uint64_t> seed_;
};

// The actions (actions.cpp); the slot's gate is held by the caller.

/* Those that may run at once, for a session that is there. */
void act(Round& round, Slot& slot, Random& random);
/* Those that an event callback, or a status callback, may do with a session. */
void actInEvent(Round& round, Slot& slot, Random& random);
void actInStatus(Round& round, Slot& slot, Random& random);
/* Destroys the session while a request of it is at the device. Gate held alone. */
void destroyUnderRequest(Round& round, Slot& slot);

}  // namespace stress
