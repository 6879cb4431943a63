// From the last bytes of an event to the host's callback: the parser, the alarm queue, the worker, the records.
#include <atomic>
#include <cstring>
#include <memory>

#include "bare.h"
#include "device/CVeltaDevice.h"
#include "manager/CVeltaDevMgr.h"
#include "rows.h"

namespace bench {

namespace {

constexpr int kTimes = 1000;
constexpr size_t kPicture = 100'000;
constexpr size_t kLastPiece = 1024;
constexpr const char* kAddress = "127.0.0.1";

std::atomic<int64_t> calledAt{0};

void onEvent(void*, char*, tagEVENT_BASE_INFO*, tagEVENT_EXT_INFO*, void*) {
    calledAt = now();
}

/* What cannot be avoided: the event is read and written on its way through the stream and through the worker, and
 * the picture is copied into the host's record. */
double limit(const std::string& json, const std::string& picture) {
    const int64_t start = now();
    bareJson(json);
    bareJson(json);
    const std::unique_ptr<char[]> copy(new char[picture.size()]);
    std::memcpy(copy.get(), picture.data(), picture.size());
    const volatile char last = copy[picture.size() - 1];
    (void)last;
    return static_cast<double>(now() - start) / 1000;
}

}  // namespace

Rows deliveryRows(const FastServer& server) {
    progress("events to the callback");
    CVeltaDevMgr& manager = CVeltaDevMgr::instance();
    manager.init();
    manager.setEventTransmitCfg(true);
    Row row{"event with 100 KB picture, last bytes to callback", "us", {}, {}, 1.3};
    {
        CVeltaDevice device;
        std::string url = std::string("Connect=TCP/IP;Target=") + kAddress +
                          ";Port=" + std::to_string(server.port()) + ";DevIndex=1;";
        std::string user = kUser;
        std::string password = kPassword;
        device.Connect_V2(url.data(), user.data(), password.data());
        device.veltaStatusCheck();  // online: only then does it take a callback
        device.SetEventCallBack(onEvent, nullptr);

        velta::AlertStreamParser parser(
            [&](std::string message) { manager.addAlarmMsg(std::move(message)); });
        for (const char* line :
             {"HTTP/1.1 200 OK\r\n", "Content-Type: multipart/mixed; boundary=velta_events\r\n", "\r\n"}) {
            parser.feed(line);
        }
        const std::string json = eventJson(kAddress, server.port(), true);
        const std::string picture(kPicture, 'p');
        const std::string event =
            "--velta_events\r\nContent-Type: application/json\r\nContent-Length: " +
            std::to_string(json.size()) + "\r\n\r\n" + json +
            "\r\n--velta_events\r\nContent-Type: image/jpeg\r\nContent-Length: " + std::to_string(kPicture) +
            "\r\n\r\n" + picture;
        const size_t last = event.size() - kLastPiece;
        takeTurns(
            kTimes, row.ours,
            [&] {
                for (size_t at = 0; at < last; at += 16384)
                    parser.feed(std::string_view(event).substr(at, std::min<size_t>(16384, last - at)));
                calledAt = 0;
                XPR_Sleep(1);  // until the worker sleeps too
                const int64_t start = now();
                parser.feed(std::string_view(event).substr(last));
                int64_t called = 0;
                while ((called = calledAt) == 0)
                    XPR_Sleep(0);
                return static_cast<double>(called - start) / 1000;
            },
            row.limit, [&] { return limit(json, picture); });
    }
    manager.unInit();
    CVeltaDevMgr::release();
    Row worst{"the same, 99 of 100", "us", {{row.ours.quantile(0.99)}}, {}, 1000};
    return {row, worst};
}

}  // namespace bench
