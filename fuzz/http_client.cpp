// What a device may send as an HTTP answer, to the HTTP client library and to the alert stream's own transfer.
//
// Input: the method, the size of the caller's buffer, the raw answers. With a method of 4 and above the session
// opens its alert stream instead.

#include <netutils/netutils.h>
#include <xpr/thread.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <memory>
#include <string_view>

#include "answer_player.h"
#include "device/CVeltaDevice.h"
#include "manager/CVeltaDevMgr.h"
#include "support.h"

namespace {

constexpr uint32_t kBufferSizes[] = {65536, 0, 1, 100};
constexpr int32_t kTimeOutMs = 200;
constexpr std::string_view kUser = "admin";
constexpr std::string_view kPassword = "velta-sim-1";

uint32_t size32(std::string_view text) {
    return static_cast<uint32_t>(text.size());
}

void exchange(const std::string& url, uint8_t method, uint32_t room) {
    const NET_HTTPCLIENT_HANDLE client = NET_HTTPCLIENT_Create();
    fuzz::require(client > 0, "there is a client");
    constexpr std::string_view kBody = "<body/>";
    NET_HTTPCLIENT_SetParam(client, NET_HTTPCLIENT_PARAM_CREDENTIALS, kUser.data(), size32(kUser),
                            kPassword.data(), size32(kPassword));
    NET_HTTPCLIENT_SetParam(client, NET_HTTPCLIENT_PARAM_BODY, nullptr, 0, kBody.data(), size32(kBody));
    NET_HTTPCLIENT_SetParam(client, NET_HTTPCLIENT_PARAM_SEND_TIMEOUT, nullptr, 0, &kTimeOutMs,
                            sizeof kTimeOutMs);
    NET_HTTPCLIENT_SetParam(client, NET_HTTPCLIENT_PARAM_EXCHANGE_TIMEOUT, nullptr, 0, &kTimeOutMs,
                            sizeof kTimeOutMs);
    const std::unique_ptr<char[]> buffer(new char[room]);
    NET_HTTPCLIENT_EXCHANGE record{};
    record.url = url.data();
    record.urlLength = url.size();
    record.buffer = buffer.get();
    record.bufferSize = room;
    record.method = method;
    const int answered = NET_HTTPCLIENT_ShortLinkExchange(client, &record, &record);
    fuzz::require(record.bufferSize <= room, "an answer fits its buffer");
    fuzz::require(answered == 0 || record.httpStatus != 0, "an answer has a status");
    fuzz::require(answered != 0 || (record.bufferSize == room && NET_UTILS_GetLastError() != NET_UTILS_OK),
                  "a failure changes nothing and has a reason");
    const std::string body(buffer.get(), answered != 0 ? record.bufferSize : 0);
    fuzz::require(body.size() <= room, "what arrived can be read");
    NET_HTTPCLIENT_Destroy(client);
}

void openStream(uint16_t port) {
    {
        CVeltaDevice device;
        std::string url = "Connect=TCP/IP;Target=127.0.0.1;Port=" + std::to_string(port) + ";DevIndex=1;";
        std::string user(kUser);
        std::string password(kPassword);
        device.Connect_V2(url.data(), user.data(), password.data());
        fuzz::require(device.veltaArm() == 0, "a stream has a thread");
        while (!device.isArmThreadExit())
            XPR_Sleep(1);
        device.veltaDisarm();
    }
    CVeltaDevMgr::release();  // with the messages in its queue
}

/* No input may send this program to another address. */
bool isRedirection(const std::string& answer) {
    constexpr std::string_view kHeader = "location";
    return std::search(answer.begin(), answer.end(), kHeader.begin(), kHeader.end(),
                       [](unsigned char a, char b) { return std::tolower(a) == b; }) != answer.end();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fuzz::Listener listener;
    fuzz::Input input(data, size);
    const uint8_t method = input.byte() % 8;
    const uint32_t room = kBufferSizes[input.byte() % std::size(kBufferSizes)];
    std::vector<std::string> answers;
    while (!input.atEnd())
        answers.push_back(input.part());
    const bool isStream = method > NET_HTTPCLIENT_METHOD_DELETE;
    if (isStream && std::any_of(answers.begin(), answers.end(), isRedirection)) return 0;

    const fuzz::AnswerPlayer player(listener, std::move(answers));
    if (isStream) {
        openStream(listener.port());
    } else {
        exchange("http://127.0.0.1:" + std::to_string(listener.port()) + "/VELTA/System/time", method, room);
    }
    return 0;
}
