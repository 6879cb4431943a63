/* Requests whose documents are JSON on both sides. */
#ifndef VELTA_TRANSLATE_JSONEXCHANGE_H
#define VELTA_TRANSLATE_JSONEXCHANGE_H

#include <json/value.h>

#include <cstdint>
#include <string>

#include "device/CVeltaDevice.h"
#include "translate/HostRules.h"

namespace velta {

constexpr uint32_t kBadJsonContent = 0x60000017;
constexpr uint32_t kDeviceOffline = 0x30008007;

/* One exchange with path and "?format=json", and the query's further parameters, each with its "&". The result
 * of sendHttpReqToDevice; answer as that leaves it. */
uint32_t exchangeJson(CVeltaDevice& device, std::string& answer, const std::string& path,
                      const std::string& document, CVeltaDevice::Method method,
                      const std::string& parameters = "");

/* The same, and the device's word on it: its answer must be an object whose "statusCode" is 1. */
uint32_t orderJson(CVeltaDevice& device, std::string& answer, const std::string& path,
                   const std::string& document, CVeltaDevice::Method method,
                   const std::string& parameters = "");

/* Whether answer is the text of a JSON object from its first character on. */
bool readJsonAnswer(const std::string& answer, Json::Value& root);

/* The error number of an answer to a write: 0 for "statusCode" 1, kBadJsonContent when it is no object or says
 * neither "statusCode" nor "errorCode". */
uint32_t judgeJsonAnswer(const Json::Value& root);
uint32_t judgeJsonAnswer(const std::string& answer);

/* Checks what the host sent, sends it unchanged, and judges the answer. */
uint32_t relayOrder(CVeltaDevice& device, std::string& answer, const std::string& path, const HostBody& body,
                    const HostRules& rules, CVeltaDevice::Method method);

/* POST of a search, whose success is a document: kBadJsonContent when the answer is no object, the device's
 * error number when it has a "statusCode" at all, even 1. */
uint32_t searchJson(CVeltaDevice& device, std::string& answer, const std::string& path,
                    const std::string& condition, Json::Value& root);

/* Whether all that a page of a search says about itself is there. */
bool isResultPage(const Json::Value& page);
/* Copies that from one page to another. */
void copyPageSummary(const Json::Value& from, Json::Value& to);

/* GET of a JSON resource: 0 with root read; 0x60000001 for an answer that is no object; the device's error
 * number when its "statusCode" is an integer other than 1. answer keeps what the device sent. */
uint32_t readJsonResource(CVeltaDevice& device, std::string& answer, const std::string& path,
                          Json::Value& root);

}  // namespace velta

#endif
