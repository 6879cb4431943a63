// The way of a host's request: envelope, forwarding, answer.

#include <xlog/xlog.h>
#include <xpr/text.h>

#include <algorithm>
#include <cstdio>
#include <exception>

#include "DevPlus/Facade.h"
#include "device/CVeltaDevice.h"
#include "gateway/Envelope.h"
#include "gateway/JsonText.h"
#include "gateway/ResponseStatus.h"
#include "gateway/TagText.h"
#include "gateway/Url.h"

namespace {

constexpr const char* kDeviceInfoPath = "/VELTA/System/deviceInfo";
constexpr const char* kHostParameter = "devIndex";

constexpr const char* kTriggerPattern = "/VELTA/System/IO/outputs/%d/trigger";

/* The status of 0x6000003F, which must not need memory. */
constexpr char kNoMemory[] = R"({"errorCode":1610612799,"errorMsg":"No memory is requested.","statusCode":6,)"
                             R"("statusString":"Content Error","subStatusCode":"requestMemoryNULL"})"
                             "\n";

}  // namespace

int CVeltaDevice::VELTA_Getway(char* request, char* response, unsigned int responseSize, tagVELTA_INFO*) {
    const CallGuard call(*this);
    std::string answer;
    const char* text = kNoMemory;
    size_t length = sizeof kNoMemory - 1;
    try {
        uint32_t code = VELTA_E_BAD_PARAMETER;
        if (request == nullptr) {
            xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param null", __func__, __LINE__);
        } else {
            code = dispatch(request, answer);
        }
        if (answer.empty()) answer = velta::writeJson(velta::hostStatus(code == 0 ? velta::kSuccess : code));
        text = answer.c_str();
        length = answer.size();
    } catch (const std::exception& error) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s", __func__, __LINE__, error.what());
    }
    XPR_Strncpy(response, responseSize, text, length);
    return VELTA_OK;
}

// The text has always been used as a format: "%%" arrives as "%", and the room is counted before that. What
// else a device's texts may hold ("100%s") stays as it is.
int CVeltaDevice::DeviceLoop(char* buffer, unsigned int size) {
    const CallGuard call(*this);
    std::string text;
    const uint32_t result = getDeviceBaseInfo(text);
    const size_t room = std::min<size_t>(text.size(), size);
    std::string written;
    written.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        written += text[at];
        if (text.compare(at, 2, "%%") == 0) ++at;
    }
    XPR_Strncpy(buffer, room, written.c_str(), written.size());
    return static_cast<int>(result);
}

uint32_t CVeltaDevice::dispatch(std::string_view text, std::string& answer) {
    velta::HostRequest request;
    if (!velta::readEnvelope(text, request)) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] szConfigJson format is wrong", __func__, __LINE__);
        return VELTA_E_BAD_PARAMETER;
    }
    // A route that took the request has sent it: whatever became of it, it does not go out again as it
    // stands.
    if (const auto code = DealwithCommOpt(request, answer)) return *code;
    if (request.uri.find('?') == std::string::npos) return velta::kNoErrorCode;
    if (velta::CheckUrlWithVariable(request.uri.c_str(), kTriggerPattern, 1))
        return triggerOutput(velta::pathOf(request.uri), request);

    std::string path;
    if (!velta::removeQueryFromUrl(path, request.uri.c_str(), kHostParameter)) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] wrong url", __func__, __LINE__);
        return VELTA_E_BAD_PARAMETER;
    }
    const uint32_t method = velta::covertVELTAMethod(request.method);
    if (method == velta::kNoErrorCode) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] wrong http method", __func__, __LINE__);
        return VELTA_E_BAD_PARAMETER;
    }
    return forwardToDevice(path, request.body.text, static_cast<unsigned char>(method), answer);
}

uint32_t CVeltaDevice::triggerOutput(const std::string& path, velta::HostRequest& request) {
    int number = 0;
    std::sscanf(path.c_str(), kTriggerPattern, &number);
    if (!hasOutput(number)) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] channel error", __func__, __LINE__);
        return VELTA_E_BAD_PARAMETER;
    }
    if (request.method != "PUT") {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] no support url", __func__, __LINE__);
        return VELTA_E_NOT_SUPPORTED;
    }
    request.body.readJson();
    return veltaSetAlarmOutTrigger(path, request.body.json);
}

// A body that holds nothing but a device name is merged into the device's own document; everything else goes
// out as it stands. The device's answer is the host's, whatever its status.
uint32_t CVeltaDevice::forwardToDevice(const std::string& path, const std::string& body, unsigned char method,
                                       std::string& answer) {
    const auto newName = velta::textBetween(body, "<DeviceInfo><deviceName>", "</deviceName></DeviceInfo>");
    if (path == kDeviceInfoPath && newName) {
        std::string document;
        if (sendHttpReqToDevice(document, path, "", kGet, "") != 0) {
            xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] updateDevName error", __func__, __LINE__);
            return velta::kNoErrorCode;
        }
        if (velta::replaceDeviceName(document, *newName)) {
            sendHttpReqToDevice(answer, path, document, kPut, "");
            return velta::kNoErrorCode;
        }
    }
    const int32_t sent = sendHttpReqToDevice(answer, path, body, method, "");
    xlog_format(sent == 0 ? XLOG_INFO : XLOG_ERROR, "VELTADEV", "[%s(%d)] request [%s] [%d]", __func__,
                __LINE__, path.c_str(), sent);
    return velta::kNoErrorCode;
}
