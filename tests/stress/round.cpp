#include "round.h"

#include <dlfcn.h>

#include <cstring>
#include <thread>

#include "ledger.h"
#include "process.h"

namespace stress {
namespace {

using SetLevel = void (*)(int);
using SetSink = void (*)(void (*)(int, const char*, const char*, void*), void*);

void checkRecord(const tagEVENT_BASE_INFO& base, const tagEVENT_EXT_INFO* ext) {
    const bool sound = base.size == sizeof base &&
                       std::memchr(base.payload, 0, sizeof base.payload) != nullptr &&
                       std::strcmp(base.deviceAddress, "127.0.0.1") == 0 && base.dateTime[0] != '\0';
    const bool picture =
        ext == nullptr || (ext->kind == VELTA_EXT_PICTURE && ext->itemCount == 1 && ext->items->length >= 0 &&
                           ext->items->data[ext->items->length] == '\0');
    if (!sound || !picture) violation("a broken event record");
}

bool isDocumented(int status, const std::string& info) {
    return (status == VELTA_STATUS_ONLINE && info.empty()) ||
           (status == VELTA_STATUS_UNKNOWN && info.empty()) ||
           (status == VELTA_STATUS_REFUSED && info == "OfflineHint=4") ||
           (status == VELTA_STATUS_LOCKED && info == "OfflineHint=5");
}

/* Runs act with the session of the slot, unless somebody makes or destroys it. Never waits: a callback must not. */
template <class Act>
void withSession(Slot& slot, Act act) {
    const std::shared_lock gate(slot.gate, std::try_to_lock);
    if (gate.owns_lock() && slot.instance != nullptr) act();
}

}  // namespace

Round::Round(Site& where, size_t slots, uint64_t seed) : site(where), slots_(slots), seed_(seed) {
    for (size_t i = 0; i < slots; ++i) {
        slots_[i].number = i;
        slots_[i].restless = i % 3 == 0;
    }
    library.emplace();
    reinterpret_cast<SetLevel>(library->symbol("xlog_set_level"))(2);
    reinterpret_cast<SetSink>(library->symbol("xlog_set_sink"))([](int, const char*, const char*, void*) {},
                                                                nullptr);
    note("Init", library->record->Init());
    note("Init, again", library->record->Init());
    note("Plugin_SetConfig", library->setConfig("SetEventSub", "1"));
}

Round::~Round() {
    Dl_info self;
    dladdr(reinterpret_cast<void*>(library->record->Init), &self);
    const std::string path = self.dli_fname;
    library.reset();
    if (dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD) != nullptr) violation("the library is still loaded");
}

void Round::act(Random& random) {
    Slot& slot = slots_[below(random, slots_.size())];
    if (!oneIn(random, slot.restless ? 40 : 4000)) {
        const std::shared_lock gate(slot.gate);
        if (slot.instance != nullptr) return stress::act(*this, slot, random);
    }
    const std::unique_lock gate(slot.gate);
    if (slot.instance == nullptr) {
        create(slot);
    } else if (oneIn(random, 3)) {
        destroyUnderRequest(*this, slot);
    } else {
        destroy(slot, "DestroyInstance");
    }
}

void Round::create(Slot& slot) {
    void* instance = nullptr;
    note("CreateInstance", library->record->CreateInstance(&instance));
    const auto table = [&](const char* key) {
        void* found = nullptr;
        note("QueryInterface", library->record->QueryInterface(instance, key, &found));
        return found;
    };
    slot.connect = static_cast<VELTA_ConnectTable*>(table(VELTA_KEY_CONNECT));
    slot.event = static_cast<VELTA_EventTable*>(table(VELTA_KEY_EVENT));
    slot.gateway = static_cast<VELTA_GatewayTable*>(table(VELTA_KEY_GATEWAY));
    slot.instance = instance;
}

void Round::destroy(Slot& slot, const char* call) {
    void* const instance = std::exchange(slot.instance, nullptr);
    note(call, library->record->DestroyInstance(instance));
    note("DestroyInstance", library->record->DestroyInstance(instance));  // gone: nothing happens
    const std::lock_guard guard(slot.tokens);
    for (auto* list : {&slot.events, &slot.statuses}) {
        for (Token* token : *list)
            token->over = true;
        list->clear();
    }
}

Token& Round::newToken(Slot& slot) {
    const std::lock_guard guard(tokensLock_);
    return tokens_.emplace_back(*this, slot);
}

Random& Round::callbackRandom() {
    thread_local Random random(++seed_);
    return random;
}

void Round::onEvent(void*, char* sourceId, tagEVENT_BASE_INFO* base, tagEVENT_EXT_INFO* ext, void* user) {
    Token& token = *static_cast<Token*>(user);
    Round& round = token.round;
    if (token.over) violation("an event callback after its end");
    if (std::strcmp(sourceId, "D_1") != 0) violation("a wrong source");
    checkRecord(*base, ext);
    ++round.events_;
    const std::shared_lock calls(round.callers_, std::try_to_lock);
    Random& random = round.callbackRandom();
    if (!calls.owns_lock() || !oneIn(random, 4)) return;
    Slot& slot = oneIn(random, 2) ? token.slot : round.slots_[below(random, round.slots_.size())];
    if (oneIn(random, 20)) {
        const std::unique_lock gate(slot.gate, std::try_to_lock);
        if (!gate.owns_lock()) return;
        if (slot.instance == nullptr) {
            round.create(slot);
        } else {
            round.destroy(slot, "DestroyInstance, in its event callback");
        }
        return;
    }
    withSession(slot, [&] { actInEvent(round, slot, random); });
}

void Round::onStatus(void*, int status, char* info, void* user) {
    Token& token = *static_cast<Token*>(user);
    if (token.over) violation("a status callback after its end");
    if (!isDocumented(status, info)) violation("status " + std::to_string(status) + " \"" + info + '"');
    const std::shared_lock calls(token.round.callers_, std::try_to_lock);
    if (!calls.owns_lock()) return;
    withSession(token.slot, [&] { actInStatus(token.round, token.slot, token.round.callbackRandom()); });
}

void Round::finish() {
    const std::unique_lock quiet(callers_);  // Uninit is to be the only call
    if (slots_[0].instance == nullptr) create(slots_[0]);
    note("Uninit, sessions alive", library->record->Uninit());
    std::vector<std::thread> threads;
    for (size_t first = 0; first < 2; ++first) {
        threads.emplace_back([this, first] {
            for (size_t i = first; i < slots_.size(); i += 2) {
                const std::unique_lock gate(slots_[i].gate);
                if (slots_[i].instance != nullptr) destroy(slots_[i], "DestroyInstance");
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    note("Uninit", library->record->Uninit());
    if (!waitUntil([this] { return site.streams() == 0; })) violation("a stream outlives its session");
}

}  // namespace stress
