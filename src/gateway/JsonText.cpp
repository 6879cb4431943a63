#include "gateway/JsonText.h"

#include <json/reader.h>
#include <json/writer.h>

#include "gateway/InputGuard.h"

// The library marks these two classes as old-fashioned; their results are what hosts and devices are used to.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace velta {

bool parseJson(std::string_view text, Json::Value& root) {
    if (!isJsonNestingAllowed(text)) return false;
    Json::Reader reader;
    return reader.parse(text.data(), text.data() + text.size(), root);
}

std::string writeJson(const Json::Value& value) {
    return Json::FastWriter().write(value);
}

}  // namespace velta

#pragma GCC diagnostic pop
