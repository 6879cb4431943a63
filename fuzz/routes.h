/* Requests of hosts that the plug-in translates, each with a body as hosts send it.
 *
 * Inputs hold positions in this table: new rows go to its end. */
#ifndef VELTA_FUZZ_ROUTES_H
#define VELTA_FUZZ_ROUTES_H

namespace fuzz {

struct Route {
    const char* method;
    const char* path;
    const char* body = "";
};

// clang-format off
constexpr Route kRoutes[] = {
    {"GET", "/VELTA/System/deviceInfo"},
    {"PUT", "/VELTA/System/deviceInfo", R"({"DeviceInfo":{"deviceName":"East gate","deviceID":"88","model":"VA204","serialNumber":"VA204-000001","macAddress":"02:56:53:00:00:01","firmwareVersion":"V1.4.2","firmwareReleasedDate":"build 260110","bootVersion":"V1","deviceType":"ACS","telecontrolID":88,"devType":7}})"},
    {"GET", "/VELTA/System/Network/interfaces"},
    {"GET", "/VELTA/System/Network/interfaces/1"},
    {"PUT", "/VELTA/System/Network/interfaces/1", R"({"NetworkInterface":{"id":"1","IPAddress":{"ipVersion":"v4","addressingType":"static","ipAddress":"10.9.8.7","subnetMask":"255.255.255.0","DefaultGateway":{"ipAddress":"10.9.8.1"}},"Link":{"negotiation":true,"speed":1000}}})"},
    {"GET", "/VELTA/System/Network/interfaces/1/ipAddress"},
    {"PUT", "/VELTA/System/Network/interfaces/1/ipAddress", R"({"IPAddress":{"ipAddress":"10.9.8.7","PrimaryDNS":[{"ipAddress":"8.8.8.8"},{"ipAddress":"9.9.9.9"}]}})"},
    {"GET", "/VELTA/System/time"},
    {"PUT", "/VELTA/System/time", R"({"Time":{"timeMode":"manual","localTime":"2026-05-01T08:30:00+05:30"}})"},
    {"GET", "/VELTA/System/time/timeZone"},
    {"PUT", "/VELTA/System/time/timeZone", R"({"timeZone":"CST-1:00:00DST01:00:00,M3.5.0/02:00:00,M10.5.0/03:00:00"})"},
    {"GET", "/VELTA/AccessControl/capabilities"},
    {"POST", "/VELTA/AccessControl/UserInfo/Record", R"({"UserInfo":[{"employeeNo":"1001","name":"Ada Example","userType":"normal","Valid":{"enable":true,"beginTime":"2026-01-01T00:00:00","endTime":"2036-01-01T00:00:00"},"doorRight":"1","RightPlan":[{"doorNo":1,"planTemplateNo":"1"}]},{"employeeNo":"1002","Valid":{"beginTime":"2026-01-01T00:00:00","endTime":"2036-01-01T00:00:00"}}]})"},
    {"POST", "/VELTA/AccessControl/UserInfo/Record", R"({"UserInfo":{"employeeNo":"1003","name":"B","userType":"visitor","Valid":{"enable":true,"beginTime":"2026-01-01T00:00:00","endTime":"2036-01-01T00:00:00"}}})"},
    {"PUT", "/VELTA/AccessControl/UserInfo/Modify", R"({"UserInfo":{"employeeNo":"1001","name":"Ada","userType":"visitor","Valid":{"enable":true,"beginTime":"2026-01-01T00:00:00","endTime":"2036-01-01T00:00:00","timeType":"local"}}})"},
    {"GET", "/VELTA/AccessControl/UserInfo/Count"},
    {"POST", "/VELTA/AccessControl/UserInfo/Search", R"({"UserInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":30,"EmployeeNoList":[{"employeeNo":"1001"}]}})"},
    {"POST", "/VELTA/AccessControl/CardInfo/Record", R"({"CardInfo":{"employeeNo":"1001","cardNo":"0123456789"}})"},
    {"PUT", "/VELTA/AccessControl/CardInfo/Modify", R"({"CardInfo":{"employeeNo":"1001","cardNo":"0123456789","cardType":"superCard"}})"},
    {"GET", "/VELTA/AccessControl/CardInfo/Count"},
    {"POST", "/VELTA/AccessControl/CardInfo/Search", R"({"CardInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":30,"CardNoList":[{"cardNo":"0123456789"}]}})"},
    {"POST", "/VELTA/Intelligent/FDLib/FaceDataRecord", R"({"FaceInfo":{"employeeNo":"1001","faceLibType":"blackFD","hexImg":"FFD8FFE000104A46FFD9"}})"},
    {"POST", "/VELTA/Intelligent/FDLib/FaceDataRecord", R"({"faceLibType":"blackFD","FDID":"1","FPID":"1001","hexImg":"FFD8FFD9"})"},
    {"PUT", "/VELTA/Intelligent/FDLib/FDSetUp", R"({"FPID":"1001","faceLibType":"blackFD","hexImg":"FFD8FFE000104A46FFD9"})"},
    {"GET", "/VELTA/Intelligent/FDLib/Count"},
    {"POST", "/VELTA/Intelligent/FDLib/FDSearch", R"({"FaceInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":30,"employeeNo":"1001","faceLibType":"blackFD"}})"},
    {"GET", "/VELTA/AccessControl/FingerPrintCfg/capabilities"},
    {"POST", "/VELTA/AccessControl/FingerPrintDownload", R"({"FingerPrintCfg":{"employeeNo":"1001","fingerPrintID":1,"fingerData":"QUJD","fingerType":"normalFP","enableCardReader":[1],"leaderFP":[]}})"},
    {"GET", "/VELTA/AccessControl/FingerPrintProgress"},
    {"POST", "/VELTA/AccessControl/FingerPrintModify", R"({"FingerPrintModify":{"employeeNo":"1001","cardReaderNo":1,"fingerPrintID":1,"fingerType":"hijackFP"}})"},
    {"POST", "/VELTA/AccessControl/FingerPrintUpload", R"({"FingerPrintCond":{"searchID":"s","employeeNo":"1001","cardReaderNo":1,"fingerPrintID":1}})"},
    {"GET", "/VELTA/AccessControl/FingerPrint/Delete/capabilities"},
    {"GET", "/VELTA/AccessControl/CaptureFingerPrint/capabilities"},
    {"POST", "/VELTA/AccessControl/CaptureFingerPrint", R"({"CaptureFingerPrintCond":{"fingerNo":1}})"},
    {"GET", "/VELTA/AccessControl/CardReaderCfg/1"},
    {"PUT", "/VELTA/AccessControl/CardReaderCfg/1", R"({"CardReaderCfg":{"enable":true}})"},
    {"GET", "/VELTA/AccessControl/AcsWorkStatus"},
    {"PUT", "/VELTA/AccessControl/RemoteControl/door/1", R"({"RemoteControlDoor":{"cmd":"open"}})"},
    {"GET", "/VELTA/AccessControl/Door/param/1"},
    {"PUT", "/VELTA/AccessControl/Door/param/1", R"({"DoorParam":{"doorName":"<East> & 1"}})"},
    {"PUT", "/VELTA/AccessControl/UserRightWeekPlanCfg/1", R"({"UserRightWeekPlanCfg":{"enable":true,"WeekPlanCfg":[{"id":1,"enable":true,"week":"Monday","TimeSegment":{"beginTime":"00:00","endTime":"24:00"}}]}})"},
    {"GET", "/VELTA/AccessControl/UserRightWeekPlanCfg/1"},
    {"PUT", "/VELTA/AccessControl/UserRightHolidayPlanCfg/1", R"({"UserRightHolidayPlanCfg":{"enable":true,"beginDate":"2026-12-24","endDate":"2026-12-26","HolidayPlanCfg":[{"id":1,"enable":true,"TimeSegment":{"beginTime":"00:00","endTime":"24:00"}}]}})"},
    {"GET", "/VELTA/AccessControl/UserRightHolidayPlanCfg/1"},
    {"PUT", "/VELTA/AccessControl/UserRightHolidayGroupCfg/1", R"({"UserRightHolidayGroupCfg":{"enable":true,"groupName":"New Year","holidayPlanNo":"1"}})"},
    {"GET", "/VELTA/AccessControl/UserRightHolidayGroupCfg/1"},
    {"PUT", "/VELTA/AccessControl/UserRightPlanTemplate/2", R"({"UserRightPlanTemplate":{"enable":true,"templateName":"Day","weekPlanNo":1,"holidayGroupNo":"1"}})"},
    {"GET", "/VELTA/AccessControl/UserRightPlanTemplate/2"},
    {"PUT", "/VELTA/AccessControl/FaceRecognizeMode", R"({"FaceRecognizeMode":{"mode":"deepMode"}})"},
    {"GET", "/VELTA/AccessControl/FaceRecognizeMode"},
    {"POST", "/VELTA/AccessControl/AcsEvent", R"({"AcsEventSearchDescription":{"searchID":"s","searchResultPosition":0,"maxResults":30,"AcsEventFilter":{"major":5,"minor":75,"startTime":"2026-01-01T00:00:00+00:00","picEnable":true,"employeeNo":"1001"}}})"},
    {"POST", "/VELTA/AccessControl/AcsEvent", R"({"AcsEventCond":{"searchID":"s","searchResultPosition":0,"maxResults":30,"major":0}})"},
    {"PUT", "/VELTA/Event/notification/httpHosts", R"({"HttpHostNotificationList":[{"HttpHostNotification":{"id":"1","url":"/events?a=1&b=2","protocolType":"HTTP","addressingFormatType":"ipaddress","ipAddress":"127.0.0.1","portNo":80,"SubscribeEvent":{"heartbeat":30,"eventMode":"list","minorEvent":"0x4b"}}},{"HttpHostNotification":{"id":"2","url":"/","protocolType":"HTTPS","addressingFormatType":"hostname","hostName":"host.example","portNo":443}}]})"},
    {"GET", "/VELTA/Event/notification/httpHosts"},
    {"DELETE", "/VELTA/Event/notification/httpHosts"},
    {"PUT", "/VELTA/Intelligent/FDLib/FDSearch/Delete", R"({"FaceInfoDelCond":{"EmployeeNoList":[{"employeeNo":"1001"}],"faceLibType":"blackFD"}})"},
    {"PUT", "/VELTA/AccessControl/FingerPrint/Delete", R"({"FingerPrintDelete":{"mode":"byEmployeeNo","employeeNo":"1001","fingerPrintID":[1]}})"},
    {"GET", "/VELTA/AccessControl/FingerPrint/DeleteProcess"},
    {"PUT", "/VELTA/AccessControl/CardInfo/Delete", R"({"CardInfoDelCond":{"CardNoList":[{"cardNo":"0123456789"}]}})"},
    {"PUT", "/VELTA/AccessControl/UserInfoDetail/Delete", R"({"UserInfoDetail":{"mode":"byEmployeeNo","EmployeeNoList":[{"employeeNo":"1001"}]}})"},
    {"GET", "/VELTA/AccessControl/UserInfoDetail/DeleteProcess"},
    {"PUT", "/VELTA/System/reboot"},
};
// clang-format on

}  // namespace fuzz

#endif
