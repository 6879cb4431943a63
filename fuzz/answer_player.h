/* A server on the loopback that plays raw bytes as its answers, one a request. */
#ifndef VELTA_FUZZ_ANSWER_PLAYER_H
#define VELTA_FUZZ_ANSWER_PLAYER_H

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace fuzz {

/* Keeps one port for the life of the process: thousands of ports a second would run out. */
class Listener {
 public:
    Listener();
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    int socket() const { return socket_; }
    uint16_t port() const { return port_; }

 private:
    int socket_ = -1;
    uint16_t port_ = 0;
};

/* Plays on a thread of its own until destroyed. A connection stays open from answer to answer, as long as the
 * client goes on with the next request; behind the last answer every connection is closed. */
class AnswerPlayer {
 public:
    AnswerPlayer(const Listener& listener, std::vector<std::string> answers);
    ~AnswerPlayer();
    AnswerPlayer(const AnswerPlayer&) = delete;
    AnswerPlayer& operator=(const AnswerPlayer&) = delete;

 private:
    void run();
    void serve(int connection);
    bool readRequest(int connection, int timeoutMs) const;
    /* False after timeoutMs (-1: never), and when the player is to stop. */
    bool waitFor(int fd, int timeoutMs) const;

    const Listener& listener_;
    const std::vector<std::string> answers_;
    size_t played_ = 0;
    int stop_ = -1;
    std::thread thread_;
};

}  // namespace fuzz

#endif
