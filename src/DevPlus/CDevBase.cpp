#include "DevPlus/CDevBase.h"

void* CDevBase::GetInterface(const char* key) {
    // The host's side of the contract is untyped and not const; the tables themselves are never written.
    return const_cast<void*>(GetImplement(key).table);
}

void CDevBase::AddImplement(const char* key, void* object, const void* table) {
    registry_.emplace(key, tagDEVPLUS_IMPLEMENT_INFO{object, table});
}

tagDEVPLUS_IMPLEMENT_INFO CDevBase::GetImplement(const char* key) const {
    if (key == nullptr) return {};
    const auto entry = registry_.find(key);
    return entry == registry_.end() ? tagDEVPLUS_IMPLEMENT_INFO{} : entry->second;
}

void* CDevBase::GeDevBaseObject(const char* key) const {
    return GetImplement(key).object;
}
