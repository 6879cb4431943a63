/* Reading and writing a resource that a device keeps as an XML document. */
#ifndef VELTA_TRANSLATE_XMLRESOURCE_H
#define VELTA_TRANSLATE_XMLRESOURCE_H

#include <cstdint>
#include <functional>
#include <string>

class CVeltaDevice;

namespace velta {

constexpr uint32_t kDeviceError = 0x30000001;
constexpr uint32_t kInternalError = 0x30000014;

/* Fills answer with the host's JSON of a device's document; false, with answer untouched, when the document
 * is another one. */
using XmlToJson = std::function<bool(std::string& answer, const std::string& deviceXml)>;

/* GET. The error number; answer receives the host's JSON, or the status that the device reports. */
uint32_t readXmlResource(CVeltaDevice& device, const std::string& path, const XmlToJson& translate,
                         std::string& answer);

/* PUT. The error number; answer receives the status that the device reports unless that is success. */
uint32_t writeXmlResource(CVeltaDevice& device, const std::string& path, const std::string& document,
                          std::string& answer);

/* The error number of a ResponseStatus document, 0x60000001 for every other answer. answer receives the status
 * that the device reports unless that is success. */
uint32_t responseStatusOf(CVeltaDevice& device, std::string& answer, const std::string& reply);

/* The error number of an answer that is not the document that was asked for, as the device reports it;
 * 0x60000001 when it reports none. answer receives the status that the device reports. */
uint32_t refusalOfRead(CVeltaDevice& device, std::string& answer, const std::string& reply);

}  // namespace velta

#endif
