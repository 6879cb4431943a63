// The parts of the table.
#pragma once

#include "fast_server.h"
#include "figures.h"

namespace bench {

/* In this process. */
Rows codeRows();
Rows deliveryRows(const FastServer& server);
/* With the built library. */
Rows requestRows(const FastServer& server);
Rows sessionRows(FastServer& server, int count);
Rows loadingRows();

/* Prints a table of its own; takes some ten minutes. */
void printCheckCurve(const FastServer& server);

}  // namespace bench
