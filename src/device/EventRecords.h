/* From an alarm message of a device to the binary records that the host gets. */
#ifndef VELTA_DEVICE_EVENTRECORDS_H
#define VELTA_DEVICE_EVENTRECORDS_H

#include <json/value.h>
#include <velta/event.h>

#include <cstdint>
#include <string>

namespace velta {

/* Fills the whole record from an alarm's JSON object; texts are cut to their fields. port is where the device
 * was found. False, with the record in an undefined state, when there is no "dateTime". */
bool fillEventRecord(const Json::Value& alarm, int port, tagEVENT_BASE_INFO& base);

/* Whether the alarm is an access-control event that says a picture follows it. */
bool announcesPicture(const Json::Value& alarm);

/* An extension with one item: everything behind the last "}\r\n" of the message, that is, the picture part.
 * Null without memory. The caller gives it back with releaseExtension. */
tagEVENT_EXT_INFO* makePictureExtension(const std::string& message);

/* Frees an extension with its items and sets the pointer to null. Null is allowed. */
void releaseExtension(tagEVENT_EXT_INFO*& ext);

}  // namespace velta

/* A device's UTC time, "2024-05-01T08:30:00.000Z", in parts. */
struct tagJsonTime {
    int32_t reserved; /* not written */
    int32_t second;
    int32_t minute;
    int32_t hour;
    int32_t day;
    int32_t month; /* 1 to 12 */
    int32_t year;  /* four digits */
};

/* Reads a device time, takes it as local time, and writes it, offsetSeconds earlier, to time. A text that is
 * no such time, or a moment that no calendar holds, leaves time untouched. Any thread. */
void ConvertDevTimeToJsonTime(const std::string& text, int offsetSeconds, tagJsonTime& time);

#endif
