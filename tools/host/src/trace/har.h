// An exchange as an entry of an HTTP archive (HAR 1.2), as browsers' developer tools read it.
#pragma once

#include <json/value.h>

#include "trace/exchange_record.h"

namespace host {

// Members of our own have names that begin with "_": "_error" (why there is no answer, or no whole one), "_parts"
// of a multipart answer (when each part came, in milliseconds after the answer began, and its bytes in the text),
// "_encoding" of a request body that is no text.
Json::Value harEntry(const ExchangeRecord& exchange, Keep keep);

}  // namespace host
