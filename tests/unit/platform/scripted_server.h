/* A device of few words: answers each request with the next answer of a script and keeps what it received. */
#ifndef VELTA_TESTS_SCRIPTED_SERVER_H
#define VELTA_TESTS_SCRIPTED_SERVER_H

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct Answer {
    enum class Then { kGoOn, kClose, kHang };

    std::string bytes;
    Then then = Then::kGoOn;
    bool readsBody = true;
};

class ScriptedServer {
 public:
    /* After the last answer it closes every connection that sends a request. */
    explicit ScriptedServer(std::vector<Answer> script);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    uint16_t port() const { return port_; }
    std::string url(const std::string& path = "/VELTA/System/time") const;
    /* As they came over the wire, header and body. */
    std::vector<std::string> requests() const;

 private:
    void run();
    void serve(int connection);
    bool readRequest(int connection, const Answer& answer, std::string* unread);
    bool readMore(int connection, std::string* unread) const;
    /* False when the server is to stop. */
    bool waitFor(int fd, short events) const;

    const std::vector<Answer> script_;
    mutable std::mutex mutex_;
    std::vector<std::string> requests_;
    int listener_ = -1;
    int stop_ = -1;
    uint16_t port_ = 0;
    std::thread thread_;
};

#endif
