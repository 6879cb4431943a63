// Holds armed sessions, or as many bare streams, in a process of its own and says what they cost.
//
// velta-bench-hold plugin|bare PORT COUNT
// velta-bench-hold offline PORT COUNT DEADPORT DEAD FIRST: sessions that are only checked, DEAD of them without a
// device, the first of them for device FIRST.
//
// Each line of its input asks for one line of figures:
//   "resident"  KiB of memory, threads         "processor"  microseconds used so far
//   "events"    events that have arrived       "end"        milliseconds that the end of all takes; the last
// The first line comes by itself when all have been started: KiB before the first.
#include <curl/curl.h>
#include <sys/resource.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <thread>

#include "fast_server.h"
#include "plugin.h"

namespace {

std::atomic<long> events{0};

/* A figure of /proc/self/status, such as "VmRSS" in KiB or "Threads". */
long statusFigure(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(name + ":", 0) == 0) return std::strtol(line.c_str() + name.size() + 1, nullptr, 10);
    }
    return -1;
}

long processorMicroseconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1'000'000 + usage.ru_utime.tv_usec +
           usage.ru_stime.tv_usec;
}

void obey(const std::function<void()>& end) {
    for (std::string order; std::getline(std::cin, order);) {
        if (order == "resident")
            std::cout << statusFigure("VmRSS") << ' ' << statusFigure("Threads") << std::endl;
        if (order == "processor") std::cout << processorMicroseconds() << std::endl;
        if (order == "events") std::cout << events << std::endl;
        if (order != "end") continue;
        const int64_t start = bench::now();
        end();
        std::cout << static_cast<double>(bench::now() - start) / 1e6 << std::endl;
        return;
    }
}

void onEvent(void*, char*, tagEVENT_BASE_INFO*, tagEVENT_EXT_INFO*, void*) {
    ++events;
}

template <typename Table>
Table* table(const host::Library& library, void* instance, const char* key) {
    void* found = nullptr;
    library.record->QueryInterface(instance, key, &found);
    return static_cast<Table*>(found);
}

void connect(const host::Library& library, void*& instance, const std::string& key,
             const std::string& address, int port) {
    std::string user = bench::kUser;
    std::string password = bench::kPassword;
    std::string url =
        "Connect=TCP/IP;Target=" + address + ";Port=" + std::to_string(port) + ";DevIndex=" + key + ";";
    library.record->CreateInstance(&instance);
    table<VELTA_ConnectTable>(library, instance, VELTA_KEY_CONNECT)
        ->Connect_V2(instance, url.data(), user.data(), password.data());
}

void holdSessions(const std::vector<int>& numbers) {
    const int port = numbers.at(0);
    const int count = numbers.at(1);
    host::Library library;
    library.record->Init();
    library.setConfig("SetEventSub", "1");
    const long before = statusFigure("VmRSS");
    std::vector<void*> instances(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        connect(library, instances[static_cast<size_t>(i)], std::to_string(i), bench::addressOf(i), port);
    for (void* instance : instances) {
        int status = -1;
        while (status != VELTA_STATUS_ONLINE) {
            table<VELTA_ConnectTable>(library, instance, VELTA_KEY_CONNECT)
                ->GetConnectStatus(instance, &status, nullptr);
            std::this_thread::sleep_for(std::chrono::milliseconds(status == VELTA_STATUS_ONLINE ? 0 : 50));
        }
        table<VELTA_EventTable>(library, instance, VELTA_KEY_EVENT)
            ->SetEventCallBack(instance, onEvent, nullptr);
    }
    std::cout << before << std::endl;
    obey([&] {
        for (void* instance : instances)
            library.record->DestroyInstance(instance);
        library.record->Uninit();
    });
}

void holdOffline(const std::vector<int>& numbers) {
    const int port = numbers.at(0);
    const int count = numbers.at(1);
    const int deadPort = numbers.at(2);
    const int dead = numbers.at(3);
    host::Library library;
    library.record->Init();
    reinterpret_cast<void (*)(int)>(library.symbol("xlog_set_level"))(
        6);  // silence about devices that are gone
    const long before = statusFigure("VmRSS");
    std::vector<void*> instances(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        void*& instance = instances[static_cast<size_t>(i)];
        const std::string key = std::to_string(i);
        if (i == 0) {
            connect(library, instance, key, bench::addressOf(numbers.at(4)), port);
        } else if (i <= dead) {
            connect(library, instance, key, "127.0.0.1", deadPort);
        } else {
            connect(library, instance, key, bench::addressOf(bench::kWatched + i), port);
        }
    }
    std::cout << before << std::endl;
    obey([] {});
    std::quick_exit(0);  // without waiting for the check that is under way
}

size_t ignore(char*, size_t, size_t count, void*) {
    return count;
}

void* runStream(void* url) {
    CURL* const handle = curl_easy_init();
    curl_easy_setopt(handle, CURLOPT_URL, static_cast<const char*>(url));
    curl_easy_setopt(handle, CURLOPT_HEADER, 1L);
    curl_easy_setopt(handle, CURLOPT_USERNAME, bench::kUser);
    curl_easy_setopt(handle, CURLOPT_PASSWORD, bench::kPassword);
    curl_easy_setopt(handle, CURLOPT_HTTPAUTH, CURLAUTH_DIGEST);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, ignore);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_PROXY, "");
    curl_easy_perform(handle);
    return nullptr;
}

void holdStreams(const std::vector<int>& numbers) {
    const int port = numbers.at(0);
    const int count = numbers.at(1);
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const long before = statusFigure("VmRSS");
    std::vector<std::unique_ptr<std::string>> urls;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 0x40000);
    for (int i = 0; i < count; ++i) {
        urls.push_back(std::make_unique<std::string>("http://" + bench::addressOf(i) + ":" +
                                                     std::to_string(port) +
                                                     "/VELTA/Event/notification/alertStream"));
        pthread_t thread;
        if (pthread_create(&thread, &attributes, runStream, urls.back()->data()) != 0) std::abort();
    }
    std::cout << before << std::endl;
    obey([] { std::quick_exit(0); });
}

}  // namespace

int main(int argc, char** argv) {
    const std::map<std::string, void (*)(const std::vector<int>&)> modes{
        {"plugin", holdSessions}, {"bare", holdStreams}, {"offline", holdOffline}};
    const auto mode = modes.find(argc > 1 ? argv[1] : "");
    std::vector<int> numbers;
    for (int i = 2; i < argc; ++i)
        numbers.push_back(std::atoi(argv[i]));
    if (mode == modes.end() || numbers.size() != (mode->first == "offline" ? 5 : 2)) {
        std::cerr << "usage: velta-bench-hold plugin|bare PORT COUNT\n"
                     "       velta-bench-hold offline PORT COUNT DEADPORT DEAD FIRST\n";
        return 2;
    }
    mode->second(numbers);
    return 0;
}
