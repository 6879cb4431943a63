/* The clock's texts: a host's local time with its distance from UTC, and a device's time zone. */
#ifndef VELTA_TRANSLATE_SYSTEM_LOCALTIME_H
#define VELTA_TRANSLATE_SYSTEM_LOCALTIME_H

#include <string>

/* Whether a text is YYYY-MM-DDTHH:MM:SS followed by "Z" or by a signed hh:mm from -12 to +14 hours. The day is
 * not compared with the month. */
bool checkLocalTimeFormat(const std::string& localTime);

/* The device's time zone for the offset of a local time: "CST-8:00:00" for "...+08:00". Empty for "Z" and for
 * offsets that devices do not have. */
std::string getCSTFromJsonTime(const std::string& localTime);

/* Whether a text, of at most 80 characters, is a time zone as devices write it:
 *
 *     time zone = "CST" offset [ daylight ]
 *     offset    = one of those that getCSTFromJsonTime writes: "+12:00:00" to "-14:00:00"
 *     daylight  = "DST" time "," change "," change      shift of the clock, start, end
 *     change    = "M" month "." week "." day "/" time   month 1-12; week 1-5, 5 being the last; day 0-6
 *     time      = hour ":" minute ":" second            hour 0-23 of one or two digits, the others 00-59
 */
bool isValidTimeZone(const std::string& text);

#endif
