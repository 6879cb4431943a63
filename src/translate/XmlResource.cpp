#include "translate/XmlResource.h"

#include <xlog/xlog.h>
#include <velta/result.h>

#include "device/CVeltaDevice.h"
#include "gateway/CXmlBase.h"

namespace velta {

namespace {

// Says whether the device answered with a document of its own. Otherwise only the result is left to report.
bool hasDocument(int32_t sent, const std::string& path) {
    if (sent == 0) return true;
    xlog_format(XLOG_ERROR, "VELTADEV", "[%s(%d)] %s failed - %d", __func__, __LINE__, path.c_str(), sent);
    return sent == CVeltaDevice::kTransportFailure;
}

}  // namespace

uint32_t readXmlResource(CVeltaDevice& device, const std::string& path, const XmlToJson& translate,
                         std::string& answer) {
    answer.clear();
    std::string reply;
    const int32_t sent = device.sendHttpReqToDevice(reply, path, "", CVeltaDevice::kGet, "");
    if (!hasDocument(sent, path)) return static_cast<uint32_t>(sent);
    if (sent == 0 && translate(answer, reply)) return VELTA_OK;
    const uint32_t code = device.parseVELTAResponseStatus(answer, reply);
    return sent == 0 && code == VELTA_E_BAD_PARAMETER ? kInternalError : code;
}

uint32_t writeXmlResource(CVeltaDevice& device, const std::string& path, const std::string& document,
                          std::string& answer) {
    answer.clear();
    std::string reply;
    const int32_t sent = device.sendHttpReqToDevice(reply, path, document, CVeltaDevice::kPut, "");
    if (!hasDocument(sent, path)) return static_cast<uint32_t>(sent);
    return device.parseVELTAResponseStatus(answer, reply);
}

uint32_t responseStatusOf(CVeltaDevice& device, std::string& answer, const std::string& reply) {
    CXmlBase xml;
    xml.Parse(reply.c_str());
    return xml.FindElem("ResponseStatus") ? device.parseVELTAResponseStatus(answer, reply)
                                          : VELTA_E_BAD_PARAMETER;
}

uint32_t refusalOfRead(CVeltaDevice& device, std::string& answer, const std::string& reply) {
    const uint32_t code = responseStatusOf(device, answer, reply);
    return code != VELTA_OK ? code : VELTA_E_BAD_PARAMETER;
}

}  // namespace velta
