#include "fast_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string_view>
#include <utility>

namespace bench {

namespace {

constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr const char* kStreamPath = "/VELTA/Event/notification/alertStream";
constexpr const char* kCheckPath = "/VELTA/Security/userCheck";
constexpr size_t kLastPiece = 1024;

const std::string kChallenge =
    "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Digest realm=\"device\", qop=\"auth\", "
    "nonce=\"1f7c5a09b2e64d38a1f7c5a09b2e64d3\", opaque=\"5a09b2e6\", algorithm=MD5\r\nContent-Length: "
    "0\r\n\r\n";
const std::string kStreamHead =
    "HTTP/1.1 200 OK\r\nContent-Type: multipart/mixed; boundary=velta_events\r\nConnection: close\r\n\r\n";

const std::pair<const char*, std::string> kAnswers[] = {
    {kCheckPath,
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<userCheck version=\"2.0\"><statusValue>200</statusValue>"
     "<statusString>OK</statusString></userCheck>\n"},
    {"/VELTA/System/deviceInfo",
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<DeviceInfo version=\"2.0\">\n<deviceName>Access "
     "Controller "
     "1</deviceName>\n<deviceID>1</deviceID>\n<model>VA204</model>\n<serialNumber>VA204-000001</"
     "serialNumber>\n"
     "<macAddress>02:00:0a:00:00:05</macAddress>\n<firmwareVersion>V1.4.2</firmwareVersion>\n"
     "<firmwareReleasedDate>build "
     "260101</firmwareReleasedDate>\n<deviceType>ACS</deviceType>\n</DeviceInfo>\n"},
    {"", "{\n\t\"statusCode\":\t1,\n\t\"statusString\":\t\"OK\",\n\t\"subStatusCode\":\t\"ok\"\n}\n"},
};

void sendAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) return;
        bytes.remove_prefix(static_cast<size_t>(sent));
    }
}

/* The child: one thread, blocking sends of what always fits. */
class Loop {
 public:
    Loop(FastServer::Shared& shared, int orders, int listening)
        : shared_(shared), orders_(orders), listening_(listening) {
        epoll_ = epoll_create1(0);
        watch(orders_);
        watch(listening_);
    }

    void run() {
        for (;;) {
            epoll_event events[64];
            const int count = epoll_wait(epoll_, events, 64, -1);
            for (int i = 0; i < count; ++i) {
                const int fd = events[i].data.fd;
                if (fd == orders_) {
                    uint32_t pictureBytes = 0;
                    if (read(orders_, &pictureBytes, sizeof pictureBytes) != sizeof pictureBytes) return;
                    emit(pictureBytes);
                } else if (fd == listening_) {
                    accept();
                } else {
                    receive(fd);
                }
            }
        }
    }

 private:
    struct Connection {
        std::string received;
        bool stream = false;
    };

    void watch(int fd) const {
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.fd = fd;
        epoll_ctl(epoll_, EPOLL_CTL_ADD, fd, &event);
    }

    void accept() {
        const int fd = accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0) return;
        const int on = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        connections_[fd];
        watch(fd);
    }

    void receive(int fd) {
        Connection& connection = connections_[fd];
        char bytes[16384];
        const ssize_t count = read(fd, bytes, sizeof bytes);
        if (count <= 0) {
            if (connection.stream) --shared_.streams;
            connections_.erase(fd);
            close(fd);
            return;
        }
        connection.received.append(bytes, static_cast<size_t>(count));
        while (answerNext(fd, connection)) {
        }
    }

    /* Whether a whole request was there. */
    bool answerNext(int fd, Connection& connection) {
        const std::string_view all = connection.received;
        const size_t end = all.find(kHeadEnd);
        if (end == std::string_view::npos) return false;
        const std::string_view head = all.substr(0, end);
        size_t length = 0;
        if (const size_t at = head.find("Content-Length: "); at != std::string_view::npos)
            length = std::strtoul(head.data() + at + 16, nullptr, 10);
        if (all.size() < end + kHeadEnd.size() + length) return false;
        const size_t path = head.find(' ') + 1;
        answer(fd, connection, std::string(head.substr(path, head.find_first_of(" ?", path) - path)),
               head.find("\r\nAuthorization: ") != std::string_view::npos);
        connection.received.erase(0, end + kHeadEnd.size() + length);
        return true;
    }

    void answer(int fd, Connection& connection, const std::string& path, bool loggedIn) {
        if (!loggedIn) {
            sendAll(fd, kChallenge);
        } else if (path == kStreamPath) {
            sendAll(fd, kStreamHead);
            connection.stream = true;
            ++shared_.streams;
        } else {
            const std::string& body = answerTo(path);
            if (path == kCheckPath) noteCheck(fd);
            sendAll(fd, "HTTP/1.1 200 OK\r\nContent-Type: application/xml\r\nContent-Length: " +
                            std::to_string(body.size()) + "\r\n\r\n" + body);
        }
    }

    void noteCheck(int fd) {
        ++shared_.checks;
        const in_addr_t address = ntohl(localAddress(fd).sin_addr.s_addr);
        const int device = static_cast<int>(address >> 8 & 255) * 250 + static_cast<int>(address & 255) - 1;
        if (device < 0 || device >= kWatched) return;
        for (std::atomic<int64_t>& time : shared_.checkedAt[device]) {
            if (time != 0) continue;
            time = now();
            return;
        }
    }

    static sockaddr_in localAddress(int fd) {
        sockaddr_in local{};
        socklen_t size = sizeof local;
        getsockname(fd, reinterpret_cast<sockaddr*>(&local), &size);
        return local;
    }

    void emit(uint32_t pictureBytes) {
        for (auto& [fd, connection] : connections_) {
            if (!connection.stream) continue;
            const sockaddr_in local = localAddress(fd);
            char address[INET_ADDRSTRLEN];
            inet_ntop(AF_INET, &local.sin_addr, address, sizeof address);
            const std::string bytes = eventBytes(address, ntohs(local.sin_port), pictureBytes);
            const size_t last = bytes.size() > kLastPiece ? bytes.size() - kLastPiece : 0;
            sendAll(fd, std::string_view(bytes).substr(0, last));
            int unread = last > 0 ? 1 : 0;
            while (unread > 0 && ioctl(fd, SIOCOUTQ, &unread) == 0)
                usleep(1000);
            shared_.lastByteSentAt = now();
            sendAll(fd, std::string_view(bytes).substr(last));
        }
    }

    static std::string eventBytes(const std::string& address, uint16_t port, uint32_t pictureBytes) {
        const std::string json = eventJson(address, port, pictureBytes > 0);
        std::string bytes =
            "--velta_events\r\nContent-Type: application/json; charset=\"UTF-8\"\r\nContent-Length: " +
            std::to_string(json.size()) + "\r\n\r\n" + json + "\r\n";
        if (pictureBytes > 0) {
            bytes +=
                "--velta_events\r\nContent-Disposition: form-data; name=\"Picture\"; "
                "filename=\"Picture.jpg\"\r\n"
                "Content-Type: image/jpeg\r\nContent-Length: " +
                std::to_string(pictureBytes) + "\r\n\r\n";
            uint32_t random = 1;
            for (uint32_t i = 0; i < pictureBytes; ++i) {
                random = random * 1664525 + 1013904223;
                bytes += static_cast<char>(random >> 24);
            }
        }
        return bytes;
    }

    FastServer::Shared& shared_;
    const int orders_;
    const int listening_;
    int epoll_;
    std::map<int, Connection> connections_;
};

}  // namespace

int64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

std::string addressOf(int device) {
    return "127.1." + std::to_string(device / 250) + "." + std::to_string(device % 250 + 1);
}

std::string eventJson(const std::string& address, uint16_t port, bool withPicture) {
    return "{\n\t\"ipAddress\":\t\"" + address + "\",\n\t\"portNo\":\t" + std::to_string(port) +
           ",\n\t\"protocol\":\t\"HTTP\",\n\t\"macAddress\":\t\"02:00:0a:00:00:05\",\n\t\"channelID\":\t1,\n"
           "\t\"dateTime\":\t\"2026-11-01T10:11:12+01:00\",\n\t\"activePostCount\":\t1,\n"
           "\t\"eventType\":\t\"AccessControllerEvent\",\n\t\"eventState\":\t\"active\",\n"
           "\t\"eventDescription\":\t\"Access Controller Event\",\n\t\"AccessControllerEvent\":\t{\n"
           "\t\t\"deviceName\":\t\"Access Controller 1\",\n\t\t\"major\":\t5,\n\t\t\"minor\":\t75,\n"
           "\t\t\"name\":\t\"Ada Example\",\n\t\t\"cardNo\":\t\"0123456789\",\n\t\t\"cardReaderNo\":\t1,\n"
           "\t\t\"doorNo\":\t1,\n\t\t\"employeeNoString\":\t\"1001\",\n\t\t\"serialNo\":\t4711,\n"
           "\t\t\"picturesNumber\":\t" +
           (withPicture ? "1" : "0") + "\n\t}\n}";
}

const std::string& answerTo(const std::string& path) {
    const auto* answer = std::begin(kAnswers);
    while (*answer->first != '\0' && path != answer->first)
        ++answer;
    return answer->second;
}

namespace {

int listenOn(int backlog, uint16_t& port) {
    const int listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in local{};
    local.sin_family = AF_INET;
    socklen_t size = sizeof local;
    if (bind(listening, reinterpret_cast<sockaddr*>(&local), size) != 0 || listen(listening, backlog) != 0 ||
        getsockname(listening, reinterpret_cast<sockaddr*>(&local), &size) != 0) {
        return -1;
    }
    port = ntohs(local.sin_port);
    return listening;
}

}  // namespace

/* One connection that nobody accepts fills the queue: the system then drops all further attempts. */
void FastServer::block() {
    deadSockets_[0] = listenOn(0, deadPort_);
    deadSockets_[1] = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in there{};
    there.sin_family = AF_INET;
    there.sin_port = htons(deadPort_);
    there.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(deadSockets_[1], reinterpret_cast<sockaddr*>(&there), sizeof there) != 0) std::abort();
}

int64_t FastServer::betweenChecks(int device) const {
    const int64_t second = shared_->checkedAt[device][1];
    return second == 0 ? 0 : second - shared_->checkedAt[device][0];
}

FastServer::FastServer() {
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);

    shared_ = static_cast<Shared*>(
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const int listening = listenOn(4096, port_);
    int orders[2];
    if (shared_ == MAP_FAILED || listening < 0 || pipe2(orders, O_CLOEXEC) != 0) std::abort();
    block();
    child_ = fork();
    if (child_ == 0) {
        close(orders[1]);
        Loop(*shared_, orders[0], listening).run();
        _exit(0);
    }
    close(orders[0]);
    close(listening);
    orders_ = orders[1];
}

FastServer::~FastServer() {
    close(orders_);
    for (const int fd : deadSockets_)
        close(fd);
    waitpid(child_, nullptr, 0);
    munmap(shared_, sizeof(Shared));
}

void FastServer::emit(uint32_t pictureBytes) {
    if (write(orders_, &pictureBytes, sizeof pictureBytes) != sizeof pictureBytes) std::abort();
}

}  // namespace bench
