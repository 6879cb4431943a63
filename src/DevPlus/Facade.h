/* What the four interface classes share: binding to an instance, and the way from a host's call to the
 * operation. */
#ifndef VELTA_DEVPLUS_FACADE_H
#define VELTA_DEVPLUS_FACADE_H

#include <xlog/xlog.h>
#include <velta/result.h>

#include <cstdint>
#include <exception>
#include <new>
#include <utility>

#include "DevPlus/CDevBase.h"

namespace velta {

/* Results of four bytes travel as int. */
constexpr int result(uint32_t code) {
    return static_cast<int>(code);
}

/* The interface object of an instance, or null when the handle is null or the instance has no such interface.
 */
template <class Facade>
Facade* facadeOf(void* handle) {
    if (handle == nullptr) return nullptr;
    return static_cast<Facade*>(static_cast<CDevBase*>(handle)->GeDevBaseObject(Facade::kKey));
}

/* The doorway of every function that a host reaches through a table: checks that the interface is there,
 * calls the operation, and lets no exception out. */
template <class Facade, class... Parameters, class... Arguments>
int callFacade(const char* function, int line, Facade* facade, int (Facade::*operation)(Parameters...),
               Arguments&&... arguments) noexcept {
    try {
        if (facade == nullptr) {
            xlog_format(XLOG_ERROR, "PLUGIN", "[%s(%d)] [0x%08x]", function, line, VELTA_E_NO_INTERFACE);
            return result(VELTA_E_NO_INTERFACE);
        }
        return (facade->*operation)(std::forward<Arguments>(arguments)...);
    } catch (const std::bad_alloc&) {
        xlog_format(XLOG_ERROR, "PLUGIN", "[%s(%d)] out of memory", function, line);
        return result(VELTA_E_OUT_OF_MEMORY);
    } catch (const std::exception& error) {
        xlog_format(XLOG_ERROR, "PLUGIN", "[%s(%d)] %s", function, line, error.what());
        return VELTA_REFUSED;
    } catch (...) {
        xlog_format(XLOG_ERROR, "PLUGIN", "[%s(%d)] unknown exception", function, line);
        return VELTA_REFUSED;
    }
}

}  // namespace velta

#endif
