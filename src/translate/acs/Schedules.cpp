// Week plans, holidays and the templates that combine them; the way faces are recognised.

#include "translate/acs/Schedules.h"

#include <velta/result.h>

#include <algorithm>

#include "device/CVeltaDevice.h"
#include "translate/HostRules.h"
#include "translate/JsonExchange.h"

namespace {

using enum velta::JsonType;
using enum velta::Presence;
using velta::HostRule;

constexpr HostRule kTimes[] = {
    {"beginTime", Required, String},
    {"endTime", Required, String},
};
constexpr HostRule kWeekSegment[] = {
    {"id", Required, Integer},
    {"enable", Required, Bool},
    {"week", Required, String},
    {"TimeSegment", Required, Object, {}, kTimes},
};
constexpr HostRule kWeekPlan[] = {
    {"enable", Required, Bool},
    {"WeekPlanCfg", Required, Array, {}, kWeekSegment},
};
constexpr HostRule kWeekPlanCfg[] = {{"UserRightWeekPlanCfg", Required, Object, {}, kWeekPlan}};

constexpr HostRule kHolidaySegment[] = {
    {"id", Required, Integer},
    {"enable", Required, Bool},
    {"TimeSegment", Required, Object, {}, kTimes},
};
constexpr HostRule kHolidayPlan[] = {
    {"enable", Required, Bool},
    {"beginDate", Required, String},
    {"endDate", Required, String},
    {"HolidayPlanCfg", Required, Array, {}, kHolidaySegment},
};
constexpr HostRule kHolidayPlanCfg[] = {{"UserRightHolidayPlanCfg", Required, Object, {}, kHolidayPlan}};

constexpr HostRule kHolidayGroup[] = {
    {"enable", Required, Bool},
    {"groupName", Required, String},
    {"holidayPlanNo", Required, String},
};
constexpr HostRule kHolidayGroupCfg[] = {{"UserRightHolidayGroupCfg", Required, Object, {}, kHolidayGroup}};

constexpr HostRule kTemplate[] = {
    {"enable", Required, Bool},
    {"templateName", Required, String},
    {"weekPlanNo", Required, Integer},
    {"holidayGroupNo", Required, String},
};
constexpr HostRule kPlanTemplate[] = {{"UserRightPlanTemplate", Required, Object, {}, kTemplate}};

constexpr const char* kModes[] = {"normalMode", "deepMode"};
constexpr HostRule kMode[] = {{"mode", Required, String, kModes}};
constexpr HostRule kRecognizeMode[] = {{"FaceRecognizeMode", Required, Object, {}, kMode}};

}  // namespace

std::string velta::trim(std::string text, std::string_view characters) {
    std::erase_if(text, [&](char c) { return characters.find(c) != std::string_view::npos; });
    return text;
}

// Devices have always been sent week plans without any white space, that inside names included.
uint32_t CVeltaDevice::veltaSetUserRightWeekPlanCfg(std::string& answer, const std::string& path,
                                                    const velta::HostBody& body) {
    if (!velta::keepsRules(body.json, kWeekPlanCfg)) return VELTA_E_BAD_PARAMETER;
    return velta::orderJson(*this, answer, path, velta::trim(velta::trim(body.text, " \t"), "\r\n"), kPut);
}

uint32_t CVeltaDevice::veltaSetUserRightHolidayPlanCfg(std::string& answer, const std::string& path,
                                                       const velta::HostBody& body) {
    return velta::relayOrder(*this, answer, path, body, kHolidayPlanCfg, kPut);
}

uint32_t CVeltaDevice::veltaSetUserRightHolidayGroupCfg(std::string& answer, const std::string& path,
                                                        const velta::HostBody& body) {
    return velta::relayOrder(*this, answer, path, body, kHolidayGroupCfg, kPut);
}

uint32_t CVeltaDevice::veltaSetUserRightPlanTemplate(std::string& answer, const std::string& path,
                                                     const velta::HostBody& body) {
    return velta::relayOrder(*this, answer, path, body, kPlanTemplate, kPut);
}

uint32_t CVeltaDevice::veltaSetAcsFaceRecognizeMode(std::string& answer, const std::string& path,
                                                    const velta::HostBody& body) {
    return velta::relayOrder(*this, answer, path, body, kRecognizeMode, kPut);
}
