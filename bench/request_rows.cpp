// Requests through the whole library, against the same exchanges made with the HTTP library alone.
#include <sched.h>

#include <ctime>

#include "bare.h"
#include "gateway/JsonText.h"
#include "plugin.h"
#include "rows.h"

namespace bench {

namespace {

constexpr int kTimes = 4000;
constexpr int kBatch = 30;

double wallMicroseconds() {
    return static_cast<double>(now()) / 1000;
}

/* Processor time of the calling thread, which does all the work of a request. */
double cpuMicroseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

/* Keeps the calling thread and the server on a core of their own each. Where the scheduler puts them together for
 * some exchanges and apart for others, times have two medians. */
class OwnCores {
 public:
    explicit OwnCores(const FastServer& server) : server_(server.process()) {
        sched_getaffinity(0, sizeof all_, &all_);
        int next = 0;
        for (const pid_t process : {0, server_}) {
            while (next < CPU_SETSIZE && !CPU_ISSET(next, &all_))
                ++next;
            if (next == CPU_SETSIZE) return;  // one core: they share it
            cpu_set_t own;
            CPU_ZERO(&own);
            CPU_SET(next++, &own);
            sched_setaffinity(process, sizeof own, &own);
        }
    }
    ~OwnCores() {
        for (const pid_t process : {0, server_})
            sched_setaffinity(process, sizeof all_, &all_);
    }
    OwnCores(const OwnCores&) = delete;
    OwnCores& operator=(const OwnCores&) = delete;

 private:
    pid_t server_;
    cpu_set_t all_{};
};

struct Case {
    const char* what;
    const char* method;
    std::string uri;
    std::string body;
    const char* sent; /* the path that goes to the device */
    int exchanges;
    bool json; /* one reading and writing of the documents counts as the network's part too */
    double target;
};

std::string person(int number) {
    return R"({"employeeNo":")" + std::to_string(number) +
           R"(","name":"Ada Example","userType":"normal","Valid":{"enable":true,"beginTime":"2026-01-01T00:00:00",)"
           R"("endTime":"2036-01-01T00:00:00"},"doorRight":"1","RightPlan":[{"doorNo":1,"planTemplateNo":"1"}]})";
}

std::string persons() {
    std::string list;
    for (int i = 0; i < kBatch; ++i)
        list += (i == 0 ? "" : ",") + person(i);
    return R"({"UserInfo":[)" + list + "]}";
}

std::vector<Case> cases() {
    return {
        {"forwarded request", "GET", "/VELTA/System/Video/inputs/channels/1?devIndex=1", "",
         "/VELTA/System/Video/inputs/channels/1", 1, false, 1.05},
        {"card add", "POST", "/VELTA/AccessControl/CardInfo/Record?format=json&devIndex=1",
         R"({"CardInfo":{"employeeNo":"1001","cardNo":"0123456789","cardType":"normalCard"}})",
         "/VELTA/AccessControl/CardInfo/Record?format=json", 1, true, 1.10},
        {"batch of 30 persons", "POST", "/VELTA/AccessControl/UserInfo/Record?format=json&devIndex=1",
         persons(), "/VELTA/AccessControl/UserInfo/Record?format=json", kBatch, true, 1.10},
        {"device information", "GET", "/VELTA/System/deviceInfo?format=json&devIndex=1", "",
         "/VELTA/System/deviceInfo", 1, true, 1.10},
    };
}

std::string envelopeOf(const Case& c) {
    Json::Value envelope;
    envelope["method"] = c.method;
    envelope["uri"] = c.uri;
    envelope["body"] = c.body;
    return velta::writeJson(envelope);
}

/* The documents of a case: what the host sends, and for each exchange what goes out and comes back. */
void bare(const Case& c, const std::string& url, const std::string& hostAnswer) {
    const std::string single = R"({"UserInfo":)" + person(1) + "}";
    std::string answer;
    for (int i = 0; i < c.exchanges; ++i) {
        answer = bareExchange(c.method, url + c.sent, c.exchanges == 1 ? c.body : single);
        if (c.json && answer.starts_with('{')) bareJson(answer);
        if (c.exchanges > 1) bareJson(single);
    }
    if (!c.json) return;
    if (!c.body.empty()) bareJson(c.body);
    bareJson(hostAnswer);
}

}  // namespace

Rows requestRows(const FastServer& server) {
    host::Library library;
    library.record->Init();
    Rows rows;
    {
        host::Session session(library);
        session.connectTo(server.port());
        progress("waiting for the first online check");
        session.waitForStatus(VELTA_STATUS_ONLINE);
        const std::string url = "http://127.0.0.1:" + std::to_string(server.port());
        for (const Case& c : cases()) {
            progress(c.what);
            std::string envelope = envelopeOf(c);
            std::vector<char> answer(65536);
            Row wall{std::string(c.what) + ", time", "us", {}, {}, c.target};
            Row cpu{std::string(c.what) + ", processor time", "us", {}, {}, c.target};
            const auto measure = [](Samples& cpuSamples, const auto& run) {
                const double cpuBefore = cpuMicroseconds();
                const double wallBefore = wallMicroseconds();
                run();
                const double taken = wallMicroseconds() - wallBefore;
                cpuSamples.values.push_back(cpuMicroseconds() - cpuBefore);
                return taken;
            };
            const auto throughTheLibrary = [&] {
                session.gateway->VELTA_Getway(session.instance, envelope.data(), answer.data(),
                                              static_cast<unsigned>(answer.size()), nullptr);
            };
            const OwnCores cores(server);
            takeTurns(
                kTimes / c.exchanges + 30, wall.ours, [&] { return measure(cpu.ours, throughTheLibrary); },
                wall.limit, [&] { return measure(cpu.limit, [&] { bare(c, url, answer.data()); }); });
            rows.push_back(std::move(wall));
            rows.push_back(std::move(cpu));
        }
    }
    library.record->Uninit();
    return rows;
}

}  // namespace bench
