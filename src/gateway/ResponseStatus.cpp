#include "gateway/ResponseStatus.h"

#include <xlog/xlog.h>

#include <algorithm>
#include <cstdlib>

#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"
#include "gateway/JsonText.h"

namespace {

constexpr uint32_t kBadAuthorization = 0x40000003;
constexpr uint32_t kHttpUnauthorized = 401;

uint32_t groupNumber(uint32_t errorNo) {
    return errorNo <= 1 ? 1 : errorNo >> 28;
}

// As devices write them: a decimal number that may fill all 32 bits.
uint32_t numberOf(const std::string& text) {
    return static_cast<uint32_t>(std::strtoll(text.c_str(), nullptr, 10));
}

}  // namespace

bool getResponseStatusByErrorNo(uint32_t errorNo, Json::Value& status, uint32_t& httpStatus) {
    const uint32_t number = groupNumber(errorNo);
    const tagREST_ERR_GROUP* const group = velta::errorGroup(number);
    if (group == nullptr) return false;
    const auto entry =
        std::lower_bound(group->entries.begin(), group->entries.end(), errorNo,
                         [](const tagREST_ERR_DESC& e, uint32_t no) { return e.errorNo < no; });
    if (entry == group->entries.end() || entry->errorNo != errorNo) return false;
    Json::Value found(Json::objectValue);
    found["statusCode"] = static_cast<int>(number);
    found["statusString"] = group->statusString;
    found["subStatusCode"] = entry->subStatusCode;
    found["errorCode"] = errorNo;
    found["errorMsg"] = entry->errorMsg;
    status = std::move(found);
    httpStatus = group->httpStatus;
    return true;
}

bool getHttpStatusCodeByErrorNo(uint32_t errorNo, uint32_t& httpStatus) {
    const tagREST_ERR_GROUP* const group = velta::errorGroup(groupNumber(errorNo));
    if (group == nullptr) return false;
    httpStatus = errorNo == kBadAuthorization ? kHttpUnauthorized : group->httpStatus;
    return true;
}

uint32_t getHttpStatusCodeByErrorNo(uint32_t errorNo) {
    uint32_t httpStatus = 200;
    getHttpStatusCodeByErrorNo(errorNo, httpStatus);
    return httpStatus;
}

std::optional<uint32_t> velta::errorNoOfAnswer(const Json::Value& answer) {
    if (const auto errorCode = integerOf(memberOf(answer, "errorCode"))) return errorCode;
    const auto statusCode = integerOf(memberOf(answer, "statusCode"));
    if (!statusCode) return std::nullopt;
    return errorNoOfStatusCode(*statusCode);
}

Json::Value velta::hostStatus(uint32_t errorNo) {
    Json::Value status;
    uint32_t httpStatus = 0;
    if (!getResponseStatusByErrorNo(errorNo, status, httpStatus)) {
        getResponseStatusByErrorNo(kUnknownErrorCode, status, httpStatus);
    }
    return status;
}

uint32_t CVeltaDevice::parseVELTAResponseStatus(std::string& answer, const std::string& deviceXml) {
    CXmlBase xml;
    xml.Parse(deviceXml.c_str());
    if (!xml.SetRoot()) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] xml root get failed", __func__, __LINE__);
        return VELTA_E_BAD_PARAMETER;
    }
    if (!xml.IntoElem() || !xml.FindElem("statusCode")) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] xml param statusCode is illegal", __func__, __LINE__);
        return VELTA_E_BAD_PARAMETER;
    }
    const std::string statusCode = xml.GetData();
    if (statusCode == "1" || statusCode == "0") return 0;
    uint32_t code = velta::errorNoOfStatusCode(numberOf(statusCode));
    if (xml.FindElemNoOrder("errorCode")) code = numberOf(xml.GetData());
    answer = velta::writeJson(velta::hostStatus(code));
    return code;
}
