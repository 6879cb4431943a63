/* Error numbers, and what host and device say with them.
 *
 * An error number is a status group in its top four bits (1 to 7) and a sub-status below; 0 and 1 belong to
 * group 1. */
#ifndef VELTA_GATEWAY_RESPONSESTATUS_H
#define VELTA_GATEWAY_RESPONSESTATUS_H

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <span>

/* One catalogued error number. */
struct tagREST_ERR_DESC {
    uint32_t errorNo;
    const char* subStatusCode;
    const char* errorMsg; /* an English sentence, or empty */
};

/* A status group with its entries in the order of their numbers. */
struct tagREST_ERR_GROUP {
    std::span<const tagREST_ERR_DESC> entries;
    const char* statusString;
    uint32_t httpStatus;
};

namespace velta {

constexpr uint32_t kNoErrorCode = 0xFFFFFFFF; /* not handled, or no code was set */
constexpr uint32_t kSuccess = 0x00000001;
constexpr uint32_t kUnknownErrorCode = 0x4000111D;

/* The group of a status code 1 to 7, or null. */
const tagREST_ERR_GROUP* errorGroup(uint32_t statusCode);

/* The first error number of a device's status group: what a status code says when nothing more precise is
 * known. */
constexpr uint32_t errorNoOfStatusCode(uint32_t statusCode) {
    return (statusCode << 28) | 1;
}

/* The error number in a device's JSON answer: its "errorCode", else the first one of its "statusCode"; nothing
 * when both are missing or no integers. */
std::optional<uint32_t> errorNoOfAnswer(const Json::Value& answer);

/* The host status of a number; of kUnknownErrorCode when it is not catalogued. */
Json::Value hostStatus(uint32_t errorNo);

}  // namespace velta

/* status: {"statusCode","statusString","subStatusCode","errorCode","errorMsg"}. False, with both outputs
 * untouched, when the number is not catalogued; 0 is not. Any thread. */
bool getResponseStatusByErrorNo(uint32_t errorNo, Json::Value& status, uint32_t& httpStatus);

/* The HTTP status of a number, catalogued or not; false, with the output untouched, outside groups 1 to 7. */
bool getHttpStatusCodeByErrorNo(uint32_t errorNo, uint32_t& httpStatus);

/* As above; 200 where that is false. */
uint32_t getHttpStatusCodeByErrorNo(uint32_t errorNo);

#endif
