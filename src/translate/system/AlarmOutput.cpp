// Commands to the device: switching an alarm output, restarting.

#include <xlog/xlog.h>
#include <velta/result.h>

#include "device/CVeltaDevice.h"
#include "translate/XmlDocument.h"
#include "translate/XmlResource.h"

namespace {

constexpr const char* kRebootPath = "/VELTA/System/reboot";

/* "high", "low", or empty for anything else. */
std::string outputState(const Json::Value& body) {
    if (!body.isObject()) return "";
    const Json::Value& port = body["IOPortData"];
    if (!port.isObject() || !port["outputState"].isString()) return "";
    const std::string state = port["outputState"].asString();
    return state == "high" || state == "low" ? state : "";
}

}  // namespace

uint32_t CVeltaDevice::veltaSetAlarmOutTrigger(const std::string& path, const Json::Value& body) {
    const std::string state = outputState(body);
    if (state.empty()) {
        xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] param is wrong", __func__, __LINE__);
        return VELTA_E_BAD_PARAMETER;
    }
    const std::string document =
        velta::kXmlDeclaration + velta::xmlElement("IOPortData",
                                                   " " + velta::xmlElement("outputState", state),
                                                   velta::kXmlRootUnversioned);
    std::string reply;
    const int32_t sent = sendHttpReqToDevice(reply, path, document, kPut, "");
    if (sent == 0 && isValidOutputFormVelta(reply)) return VELTA_OK;
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] veltaSetAlarmOutTrigger failed", __func__, __LINE__);
    if (sent == 0) return velta::kDeviceError;
    std::string status;  // the gateway composes the host's from the number
    return parseVELTAResponseStatus(status, reply);
}

bool CVeltaDevice::isValidOutputFormVelta(const std::string& reply) {
    return velta::rootChildText(reply, "statusCode") == "1";
}

uint32_t CVeltaDevice::veltaPutRebootDevice(std::string& answer) {
    return velta::writeXmlResource(*this, kRebootPath, "", answer);
}
