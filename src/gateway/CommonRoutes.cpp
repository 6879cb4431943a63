// The common operations: requests that the plug-in translates between the host's JSON and the device's
// documents.

#include <xlog/xlog.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string_view>

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
    return (call.device.*operation)(call.answer, call.request.body.json);
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
    (call.device.*operation)(code, call.request.body.text, call.answer);
    return static_cast<uint32_t>(code);
}

template <uint32_t (CVeltaDevice::*operation)(std::string&, const std::string&)>
uint32_t byPath(const Call& call) {
    return (call.device.*operation)(call.answer, call.path);
}

template <uint32_t (CVeltaDevice::*operation)(std::string&, const std::string&, const velta::HostBody&)>
uint32_t byPathBody(const Call& call) {
    return (call.device.*operation)(call.answer, call.path, call.request.body);
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
    return call.interfaceNumber() > 0
               ? (call.device.*operation)(call.path, call.request.body.json, call.answer)
               : badInterface(__func__, __LINE__);
}

/* What a route does for a method; hosts and this table write methods in the same spelling. */
struct MethodEntry {
    const char* name;
    Operation operation;
};

/* A path in which "%d" stands for a number. */
struct Pattern {
    const char* text;
    size_t fixed; /* characters before the first number */

    consteval Pattern(const char* pattern)
        : text(pattern), fixed(std::min(std::string_view(text).find('%'), std::string_view(text).size())) {}
};

struct Route {
    Pattern pattern;
    int variables;
    MethodEntry methods[4];

    /* Most requests are forwarded, past the whole table: only where the pattern may fit is it looked at closely. */
    bool takes(const std::string& uri, size_t pathLength) const {
        const bool mayFit = variables == 0 ? pathLength == pattern.fixed : pathLength > pattern.fixed;
        return mayFit && uri.compare(0, pattern.fixed, pattern.text, pattern.fixed) == 0 &&
               velta::CheckUrlWithVariable(uri.c_str(), pattern.text, variables);
    }
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
    {"/VELTA/AccessControl/capabilities", 0, {{"GET", byAnswer<&CVeltaDevice::veltaGetAcsCapabilities>}}},
    {"/VELTA/AccessControl/UserInfoDetail/Delete", 0, {{"PUT", byPathBody<&CVeltaDevice::veltaDeleteAcsPermissionCfg>}}},
    {"/VELTA/AccessControl/UserInfoDetail/DeleteProcess", 0, {{"GET", byPath<&CVeltaDevice::veltaGetDeleteAcsPermissionStatus>}}},
    {"/VELTA/AccessControl/UserInfo/Record", 0, {{"POST", byPathBody<&CVeltaDevice::veltaAddAcsUser>}}},
    {"/VELTA/AccessControl/UserInfo/Modify", 0, {{"PUT", byPathBody<&CVeltaDevice::veltaSetAcsUser>}}},
    {"/VELTA/AccessControl/UserInfo/Count", 0, {{"GET", byPath<&CVeltaDevice::veltaGetAcsUserCount>}}},
    {"/VELTA/AccessControl/UserInfo/Search", 0, {{"POST", byPathBody<&CVeltaDevice::veltaSearchAcsUser>}}},
    {"/VELTA/AccessControl/CardInfo/Record", 0, {{"POST", byPathBody<&CVeltaDevice::veltaAddAcsCard>}}},
    {"/VELTA/AccessControl/CardInfo/Modify", 0, {{"PUT", byPathBody<&CVeltaDevice::veltaSetAcsCard>}}},
    {"/VELTA/AccessControl/CardInfo/Delete", 0, {{"PUT", byPathBody<&CVeltaDevice::veltaDeleteAcsCard>}}},
    {"/VELTA/AccessControl/CardInfo/Count", 0, {{"GET", byPath<&CVeltaDevice::veltaGetAcsCardCount>}}},
    {"/VELTA/AccessControl/CardInfo/Search", 0, {{"POST", byPathBody<&CVeltaDevice::veltaSearchAcsCard>}}},
    {"/VELTA/Intelligent/FDLib/FaceDataRecord", 0, {{"POST", byPathBody<&CVeltaDevice::veltaAddAcsFace>}}},
    {"/VELTA/Intelligent/FDLib/FDSetUp", 0, {{"PUT", byPathBody<&CVeltaDevice::veltaSetUpAcsFace>}}},
    {"/VELTA/Intelligent/FDLib/FDSearch/Delete", 0, {{"PUT", byPathBody<&CVeltaDevice::veltaDeleteAcsFace>}}},
    {"/VELTA/Intelligent/FDLib/Count", 0, {{"GET", byPath<&CVeltaDevice::veltaGetAcsFaceCount>}}},
    {"/VELTA/Intelligent/FDLib/FDSearch", 0, {{"POST", byPathBody<&CVeltaDevice::veltaSearchAcsFace>}}},
    {"/VELTA/AccessControl/AcsWorkStatus", 0, {{"GET", byPath<&CVeltaDevice::veltaGetAcsWorkStatus>}}},
    {"/VELTA/AccessControl/RemoteControl/door/%d", 1, {{"PUT", byPathBody<&CVeltaDevice::veltaRemoteControlDoor>}}},
    {"/VELTA/AccessControl/Door/param/%d", 1, {{"PUT", byPathBody<&CVeltaDevice::veltaSetDoorParam>}, {"GET", byPath<&CVeltaDevice::veltaGetDoorParam>}}},
    {"/VELTA/AccessControl/UserRightHolidayPlanCfg/%d", 1, {{"PUT", byPathBody<&CVeltaDevice::veltaSetUserRightHolidayPlanCfg>}, {"GET", byPath<&CVeltaDevice::veltaGetUserRightHolidayPlanCfg>}}},
    {"/VELTA/AccessControl/UserRightHolidayGroupCfg/%d", 1, {{"PUT", byPathBody<&CVeltaDevice::veltaSetUserRightHolidayGroupCfg>}, {"GET", byPath<&CVeltaDevice::veltaGetUserRightHolidayGroupCfg>}}},
    {"/VELTA/AccessControl/UserRightWeekPlanCfg/%d", 1, {{"PUT", byPathBody<&CVeltaDevice::veltaSetUserRightWeekPlanCfg>}, {"GET", byPath<&CVeltaDevice::veltaGetUserRightWeekPlanCfg>}}},
    {"/VELTA/AccessControl/UserRightPlanTemplate/%d", 1, {{"PUT", byPathBody<&CVeltaDevice::veltaSetUserRightPlanTemplate>}, {"GET", byPath<&CVeltaDevice::veltaGetUserRightPlanTemplate>}}},
    {"/VELTA/AccessControl/FaceRecognizeMode", 0, {{"PUT", byPathBody<&CVeltaDevice::veltaSetAcsFaceRecognizeMode>}, {"GET", byPath<&CVeltaDevice::veltaGetAcsFaceRecognizeMode>}}},
    {"/VELTA/AccessControl/AcsEvent", 0, {{"POST", byPathBody<&CVeltaDevice::veltaSearchAcsEvent>}}},
    {"/VELTA/AccessControl/FingerPrintCfg/capabilities", 0, {{"GET", byPath<&CVeltaDevice::veltaGetAcsFpCapabilities>}}},
    {"/VELTA/AccessControl/CardReaderCfg/%d", 1, {{"PUT", byPathBody<&CVeltaDevice::veltaSetAcsCardReaderCfg>}, {"GET", byPath<&CVeltaDevice::veltaGetAcsCardReaderCfg>}}},
    {"/VELTA/AccessControl/FingerPrintDownload", 0, {{"POST", byPathBody<&CVeltaDevice::veltaAddAcsFp>}}},
    {"/VELTA/AccessControl/FingerPrintProgress", 0, {{"GET", byPath<&CVeltaDevice::veltaGetAddAcsFpProgress>}}},
    {"/VELTA/AccessControl/FingerPrintModify", 0, {{"POST", byPathBody<&CVeltaDevice::veltaSetAcsFp>}}},
    {"/VELTA/AccessControl/FingerPrintUpload", 0, {{"POST", byPathBody<&CVeltaDevice::veltaSearchAcsFp>}}},
    {"/VELTA/AccessControl/FingerPrint/Delete", 0, {{"PUT", byPathBody<&CVeltaDevice::veltaDeleteAcsFp>}}},
    {"/VELTA/AccessControl/FingerPrint/DeleteProcess", 0, {{"GET", byPath<&CVeltaDevice::veltaGetDeleteAcsFpProgress>}}},
    {"/VELTA/AccessControl/FingerPrint/Delete/capabilities", 0, {{"GET", byPath<&CVeltaDevice::veltaGetAcsFpDeleteCapabilities>}}},
    {"/VELTA/AccessControl/CaptureFingerPrint/capabilities", 0, {{"GET", byPath<&CVeltaDevice::veltaGetAcsFpCaptureCapabilities>}}},
    {"/VELTA/AccessControl/CaptureFingerPrint", 0, {{"POST", byPathBody<&CVeltaDevice::veltaCaptureAcsFp>}}},
    {"/VELTA/Event/notification/httpHosts", 0, {{"GET", byPath<&CVeltaDevice::veltaGetEventHost>}, {"POST", byPathBody<&CVeltaDevice::veltaSetEventHost>}, {"PUT", byPathBody<&CVeltaDevice::veltaSetEventHost>}, {"DELETE", byPath<&CVeltaDevice::veltaDeleteEventHost>}}},
};
// clang-format on

/* The error number that a translator's answer carries, or none. */
uint32_t codeOfAnswer(const std::string& answer) {
    Json::Value value;
    if (answer.empty() || answer.front() != '{' || !velta::parseJson(answer, value))
        return velta::kNoErrorCode;
    return velta::errorNoOfAnswer(value).value_or(velta::kNoErrorCode);
}

}  // namespace

std::optional<uint32_t> CVeltaDevice::DealwithCommOpt(velta::HostRequest& request, std::string& answer) {
    if (!velta::isJsonURL(request.uri)) {
        xlog_format(XLOG_DEBUG, "VELTADEV", "[%s(%d)] uri is not json formart", __func__, __LINE__);
        return std::nullopt;
    }
    const size_t pathLength = std::min(request.uri.find('?'), request.uri.size());
    const Route* const route =
        std::find_if(std::begin(kRoutes), std::end(kRoutes),
                     [&](const Route& candidate) { return candidate.takes(request.uri, pathLength); });
    if (route == std::end(kRoutes)) {
        xlog_format(XLOG_DEBUG, "VELTADEV", "[%s(%d)] uri is not in the common opt", __func__, __LINE__);
        return std::nullopt;
    }
    for (const MethodEntry& method : route->methods) {
        if (method.name == nullptr || request.method != method.name) continue;
        request.body.readJson();
        const std::string path = request.uri.substr(0, pathLength);
        const uint32_t code = method.operation(Call{*this, request, path, answer});
        return code == velta::kNoErrorCode ? codeOfAnswer(answer) : code;
    }
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] wrong http method", __func__, __LINE__);
    return VELTA_E_NOT_SUPPORTED;
}
