// Holds armed sessions, or as many bare streams, in a process of its own and says what they cost.
//
// velta-bench-hold plugin|bare PORT COUNT: each line of its input asks for one line of figures:
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

void holdSessions(int port, int count) {
    host::Library library;
    library.record->Init();
    library.setConfig("SetEventSub", "1");
    const long before = statusFigure("VmRSS");
    std::vector<void*> instances(static_cast<size_t>(count));
    std::string user = bench::kUser;
    std::string password = bench::kPassword;
    for (int i = 0; i < count; ++i) {
        void*& instance = instances[static_cast<size_t>(i)];
        library.record->CreateInstance(&instance);
        std::string url = "Connect=TCP/IP;Target=" + bench::addressOf(i) + ";Port=" + std::to_string(port) +
                          ";DevIndex=" + std::to_string(i) + ";";
        table<VELTA_ConnectTable>(library, instance, VELTA_KEY_CONNECT)
            ->Connect_V2(instance, url.data(), user.data(), password.data());
    }
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

void holdStreams(int port, int count) {
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
    if (argc != 4) {
        std::cerr << "usage: velta-bench-hold plugin|bare PORT COUNT\n";
        return 2;
    }
    (std::string(argv[1]) == "plugin" ? holdSessions : holdStreams)(std::atoi(argv[2]), std::atoi(argv[3]));
    return 0;
}
