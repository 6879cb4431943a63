#include <errno.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xlog/xlog.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "test_threads.h"

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

/* Collects what is logged while it lives. */
class LogCollector {
 public:
    LogCollector() {
        xlog_set_level(XLOG_DEBUG);
        xlog_set_sink(take, this);
    }
    ~LogCollector() {
        xlog_set_sink(nullptr, nullptr);
        xlog_set_level(XLOG_ERROR);
    }
    LogCollector(const LogCollector&) = delete;
    LogCollector& operator=(const LogCollector&) = delete;

    std::vector<std::string> lines;

 private:
    static void take(int level, const char* module, const char* line, void* user) {
        xlog_format(XLOG_ERROR, "SINK", "a sink that logs loses the line and goes on");
        static_cast<LogCollector*>(user)->lines.push_back(std::string(module) + std::to_string(level) + ":" +
                                                          line);
        errno = ENOENT;
    }
};

std::string logged(const std::string& text) {
    LogCollector log;
    xlog_format(XLOG_INFO, "M", "%s", text.c_str());
    return log.lines.at(0).substr(3);
}

}  // namespace

TEST(Log, formatsAboveThresholdAndKeepsErrno) {
    LogCollector log;
    xlog_set_level(XLOG_WARNING);
    errno = EBADF;
    xlog_format(XLOG_INFO, "VELTADEV", "below");
    xlog_format(XLOG_WARNING, "VELTADEV", "[%s(%d)] at", "f", 7);
    xlog_format(XLOG_ERROR, "PLUGIN", "above");
    xlog_set_level(XLOG_OFF);
    xlog_format(XLOG_ERROR, "PLUGIN", "off");
    xlog_format(XLOG_OFF, "PLUGIN", "no level of a line");
    EXPECT_EQ(errno, EBADF);
    EXPECT_THAT(log.lines, ElementsAre("VELTADEV4:[f(7)] at", "PLUGIN5:above"));
}

TEST(Log, escapesControlCharactersAndCutsBetweenCharacters) {
    const std::string filler(XLOG_MAX_LINE - 3, 'a');
    const struct {
        std::string text, expected;
    } cases[] = {
        {"a\r\n2026 forged\t\x1b[0m\x7f", R"(a\x0d\x0a2026 forged\x09\x1b[0m\x7f)"},
        {"Tür \xe9\x97\xa8 \xf0\x9f\x9a\xaa", "Tür \xe9\x97\xa8 \xf0\x9f\x9a\xaa"},
        {"\x9bm \xc3( \xe9\x97", R"(\x9bm \xc3( \xe9\x97)"},  // no UTF-8
        {filler + "bcde", filler + "bcd"},
        {filler + "b\xc3\xbc" + "c", filler + "b\xc3\xbc"},
        {std::string(100'000, 'x'), std::string(XLOG_MAX_LINE, 'x')},
    };
    for (const auto& c : cases)
        EXPECT_EQ(logged(c.text), c.expected);
}

TEST(Log, standardErrorGetsOneWriteForEachLine) {
    // Of a datagram socket each read returns one write.
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends), 0);
    const int savedError = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    xlog_format(XLOG_ERROR, "VELTADEV", "door %d\nopen", 3);
    dup2(savedError, STDERR_FILENO);
    char written[2048];
    const ssize_t length = recv(ends[0], written, sizeof written, MSG_DONTWAIT);
    ASSERT_GT(length, 0);
    EXPECT_THAT(std::string(written, static_cast<size_t>(length)),
                MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3} E VELTADEV " +
                             std::to_string(gettid()) +
                             R"( door 3\\x0aopen)"
                             "\n"));
    for (const int fd : {ends[0], ends[1], savedError})
        close(fd);
}

TEST(Log, setSink_returnsWhenTheFormerSinkIsNoLongerInUse) {
    xlog_set_level(XLOG_INFO);
    std::atomic<bool> stop{false};
    std::atomic<int> taken{0};
    xlog_set_sink([](int, const char*, const char*, void*) {}, nullptr);
    auto writers = startThreads(2, [&](int) {
        while (!stop)
            xlog_format(XLOG_INFO, "M", "line");
    });
    for (int i = 0; i < 100; ++i) {
        auto user = std::make_unique<std::atomic<int>*>(&taken);
        const int before = taken;
        xlog_set_sink([](int, const char*, const char*, void* u) { ++**static_cast<std::atomic<int>**>(u); },
                      user.get());
        while (taken == before)
            std::this_thread::yield();
        xlog_set_sink([](int, const char*, const char*, void*) {}, nullptr);
        user.reset();  // a sink that still ran would now touch freed memory
    }
    stop = true;
    writers.clear();
    xlog_set_sink(nullptr, nullptr);
    EXPECT_GE(taken, 100);
}
