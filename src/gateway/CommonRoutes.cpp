// The common operations: requests that the plug-in translates between the host's JSON and the device's
// documents.

#include <xlog/xlog.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "device/CVeltaDevice.h"
#include "gateway/JsonText.h"
#include "gateway/ResponseStatus.h"
#include "gateway/Url.h"

namespace {

/* What a translator gets. */
struct Call {
    CVeltaDevice& device;
    const velta::HostRequest& request;
    const std::string& path; /* of the request, without its query */
    std::string& answer;

    int interfaceNumber() const {
        int number = 0;
        std::sscanf(path.c_str(), "/VELTA/System/Network/interfaces/%d", &number);
        return number;
    }
};

using Operation = uint32_t (*)(const Call& call);

template <uint32_t (CVeltaDevice::*operation)(std::string&)>
uint32_t byAnswer(const Call& call) {
    return (call.device.*operation)(call.answer);
}

template <uint32_t (CVeltaDevice::*operation)(std::string&, const Json::Value&)>
uint32_t byBody(const Call& call) {
    return (call.device.*operation)(call.answer, call.request.body);
}

template <void (CVeltaDevice::*operation)(int&, std::string&)>
uint32_t byCode(const Call& call) {
    int code = static_cast<int>(velta::kNoErrorCode);
    (call.device.*operation)(code, call.answer);
    return static_cast<uint32_t>(code);
}

template <void (CVeltaDevice::*operation)(int&, const std::string&, std::string&)>
uint32_t byCodeAndText(const Call& call) {
    int code = static_cast<int>(velta::kNoErrorCode);
    (call.device.*operation)(code, call.request.bodyText, call.answer);
    return static_cast<uint32_t>(code);
}

uint32_t badInterface(const char* function, int line) {
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] wrong Uri", function, line);
    return VELTA_E_BAD_PARAMETER;
}

template <uint32_t (CVeltaDevice::*operation)(int, std::string&)>
uint32_t byInterface(const Call& call) {
    const int number = call.interfaceNumber();
    return number > 0 ? (call.device.*operation)(number, call.answer) : badInterface(__func__, __LINE__);
}

template <uint32_t (CVeltaDevice::*operation)(const std::string&, const Json::Value&, std::string&)>
uint32_t byInterfaceBody(const Call& call) {
    return call.interfaceNumber() > 0 ? (call.device.*operation)(call.path, call.request.body, call.answer)
                                      : badInterface(__func__, __LINE__);
}

/* What a route does for a method; hosts and this table write methods in the same spelling. */
struct MethodEntry {
    const char* name;
    Operation operation;
};

struct Route {
    const char* pattern; /* "%d" stands for a number */
    int variables;
    MethodEntry methods[4];
};

/* In the order of matching. */
// clang-format off
constexpr Route kRoutes[] = {
    {"/VELTA/System/reboot", 0, {{"PUT", byAnswer<&CVeltaDevice::veltaPutRebootDevice>}}},
    {"/VELTA/System/deviceInfo", 0, {{"PUT", byBody<&CVeltaDevice::veltaPutDeviceInfo>}, {"GET", byAnswer<&CVeltaDevice::veltaGetDeviceInfo>}}},
    {"/VELTA/System/Network/interfaces", 0, {{"GET", byAnswer<&CVeltaDevice::veltaGetNetworkInterfaceList>}}},
    {"/VELTA/System/Network/interfaces/%d", 1, {{"GET", byInterface<&CVeltaDevice::veltaGetNetworkInterface>}, {"PUT", byInterfaceBody<&CVeltaDevice::veltaPutNetworkInterface>}}},
    {"/VELTA/System/Network/interfaces/%d/ipAddress", 1, {{"GET", byInterface<&CVeltaDevice::veltaGetIPAddress>}, {"PUT", byInterfaceBody<&CVeltaDevice::veltaPutIPAddress>}}},
    {"/VELTA/System/time", 0, {{"GET", byCode<&CVeltaDevice::veltaGetTimeMngParam>}, {"PUT", byCodeAndText<&CVeltaDevice::veltaSetTimeMngParam>}}},
    {"/VELTA/System/time/timeZone", 0, {{"GET", byCode<&CVeltaDevice::veltaGetTimeZoneParam>}, {"PUT", byCodeAndText<&CVeltaDevice::veltaSetTimeZoneParam>}}},
};
// clang-format on

std::optional<uint32_t> integerOf(const Json::Value& value) {
    if (value.isInt()) return static_cast<uint32_t>(value.asInt());
    if (value.isUInt()) return value.asUInt();
    return std::nullopt;
}

/* The error number that a translator's answer carries, or none. */
uint32_t codeOfAnswer(const std::string& answer) {
    Json::Value value;
    if (answer.empty() || answer.front() != '{' || !velta::parseJson(answer, value))
        return velta::kNoErrorCode;
    const Json::Value& root = value;
    if (const auto errorCode = integerOf(root["errorCode"])) return *errorCode;
    if (const auto statusCode = integerOf(root["statusCode"])) return velta::errorNoOfStatusCode(*statusCode);
    return velta::kNoErrorCode;
}

}  // namespace

std::optional<uint32_t> CVeltaDevice::DealwithCommOpt(const velta::HostRequest& request,
                                                      std::string& answer) {
    if (!velta::isJsonURL(request.uri)) {
        xlog_format(XLOG_DEBUG, "VELTADEV", "[%s(%d)] uri is not json formart", __func__, __LINE__);
        return std::nullopt;
    }
    const std::string path = velta::pathOf(request.uri);
    const Route* const route =
        std::find_if(std::begin(kRoutes), std::end(kRoutes), [&](const Route& candidate) {
            return velta::CheckUrlWithVariable(path.c_str(), candidate.pattern, candidate.variables);
        });
    if (route == std::end(kRoutes)) {
        xlog_format(XLOG_DEBUG, "VELTADEV", "[%s(%d)] uri is not in the common opt", __func__, __LINE__);
        return std::nullopt;
    }
    for (const MethodEntry& method : route->methods) {
        if (method.name == nullptr || request.method != method.name) continue;
        const uint32_t code = method.operation(Call{*this, request, path, answer});
        return code == velta::kNoErrorCode ? codeOfAnswer(answer) : code;
    }
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] wrong http method", __func__, __LINE__);
    return VELTA_E_NOT_SUPPORTED;
}
