#ifndef VELTA_DEVPLUS_CDEVBASE_H
#define VELTA_DEVPLUS_CDEVBASE_H

#include <functional>
#include <map>
#include <string>

/* One interface of an instance: the object that serves it and the table of functions that the host calls.
 * Owns neither. */
struct tagDEVPLUS_IMPLEMENT_INFO {
    void* object = nullptr;
    const void* table = nullptr;
};

/* Base of every instance: maps interface keys to interfaces. The map is filled while the instance is
 * constructed and only read afterwards, so any thread may ask. */
class CDevBase {
 public:
    CDevBase() = default;
    virtual ~CDevBase() = default;
    CDevBase(const CDevBase&) = delete;
    CDevBase& operator=(const CDevBase&) = delete;

    /* The function table of an interface; null for an unknown or null key. */
    virtual void* GetInterface(const char* key);

    /* Adds an interface. A key that is there already keeps its first object and table. */
    void AddImplement(const char* key, void* object, const void* table);

    /* The whole entry; both pointers null for an unknown or null key. */
    tagDEVPLUS_IMPLEMENT_INFO GetImplement(const char* key) const;

    /* The object of an interface; null for an unknown or null key. */
    void* GeDevBaseObject(const char* key) const;

 private:
    std::map<std::string, tagDEVPLUS_IMPLEMENT_INFO, std::less<>> registry_;
};

#endif
