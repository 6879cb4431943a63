/* How a session reaches its device. */
#ifndef VELTA_DEVICE_CONNECTION_H
#define VELTA_DEVICE_CONNECTION_H

#include <string>

namespace velta {

/* Address and credentials; a request works on its own copy. */
struct Connection {
    std::string host;
    int port = 0;
    std::string user;
    std::string password;

    /* "10.0.0.5:80": how events name the device. */
    std::string address() const { return host + ":" + std::to_string(port); }
    /* path: the resource with its query. */
    std::string url(const std::string& path) const { return "http://" + address() + path; }
};

/* The connection URL of a host: "key=value;" items. */
struct ConnectionUrl {
    std::string connect;
    std::string host;
    int port = 0;
    std::string resType;
    std::string devIndex;
    std::string deviceName;

    /* Reads the items; unknown keys are ignored, the last of several with one key counts, missing ones are
     * empty. */
    static ConnectionUrl parse(const std::string& url);

    /* No control character in any value, and a port that exists. */
    bool isSound() const;
};

}  // namespace velta

#endif
