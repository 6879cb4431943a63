/* One exchange: a request, a log-in if the device asks for one, and the answer. */
#ifndef NETUTILS_EXCHANGE_H
#define NETUTILS_EXCHANGE_H

#include <netutils/netutils.h>

#include "request.h"

namespace netutils {

/* As NET_HTTPCLIENT_ShortLinkExchange; may throw std::bad_alloc. */
int exchange(const Request& request, const NET_HTTPCLIENT_EXCHANGE& in, NET_HTTPCLIENT_EXCHANGE* out);

}  // namespace netutils

#endif
