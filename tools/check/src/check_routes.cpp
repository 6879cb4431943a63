// Which requests are translated, and which are not.
#include <algorithm>

#include "answers.h"
#include "check.h"
#include "library.h"

namespace check {
namespace {

const std::string kAccess = "/VELTA/AccessControl/";

// Every route, with the methods that it takes.
struct Route {
    const char* path;
    const char* methods;
};
constexpr Route kRoutes[] = {
    {"/VELTA/System/reboot", "PUT"},
    {"/VELTA/System/deviceInfo", "GET PUT"},
    {"/VELTA/System/Network/interfaces", "GET"},
    {"/VELTA/System/Network/interfaces/1", "GET PUT"},
    {"/VELTA/System/Network/interfaces/1/ipAddress", "GET PUT"},
    {"/VELTA/System/time", "GET PUT"},
    {"/VELTA/System/time/timeZone", "GET PUT"},
    {"/VELTA/AccessControl/capabilities", "GET"},
    {"/VELTA/AccessControl/UserInfoDetail/Delete", "PUT"},
    {"/VELTA/AccessControl/UserInfoDetail/DeleteProcess", "GET"},
    {"/VELTA/AccessControl/UserInfo/Record", "POST"},
    {"/VELTA/AccessControl/UserInfo/Modify", "PUT"},
    {"/VELTA/AccessControl/UserInfo/Count", "GET"},
    {"/VELTA/AccessControl/UserInfo/Search", "POST"},
    {"/VELTA/AccessControl/CardInfo/Record", "POST"},
    {"/VELTA/AccessControl/CardInfo/Modify", "PUT"},
    {"/VELTA/AccessControl/CardInfo/Delete", "PUT"},
    {"/VELTA/AccessControl/CardInfo/Count", "GET"},
    {"/VELTA/AccessControl/CardInfo/Search", "POST"},
    {"/VELTA/Intelligent/FDLib/FaceDataRecord", "POST"},
    {"/VELTA/Intelligent/FDLib/FDSetUp", "PUT"},
    {"/VELTA/Intelligent/FDLib/FDSearch/Delete", "PUT"},
    {"/VELTA/Intelligent/FDLib/Count", "GET"},
    {"/VELTA/Intelligent/FDLib/FDSearch", "POST"},
    {"/VELTA/AccessControl/AcsWorkStatus", "GET"},
    {"/VELTA/AccessControl/RemoteControl/door/1", "PUT"},
    {"/VELTA/AccessControl/Door/param/1", "GET PUT"},
    {"/VELTA/AccessControl/UserRightHolidayPlanCfg/1", "GET PUT"},
    {"/VELTA/AccessControl/UserRightHolidayGroupCfg/1", "GET PUT"},
    {"/VELTA/AccessControl/UserRightWeekPlanCfg/1", "GET PUT"},
    {"/VELTA/AccessControl/UserRightPlanTemplate/1", "GET PUT"},
    {"/VELTA/AccessControl/FaceRecognizeMode", "GET PUT"},
    {"/VELTA/AccessControl/AcsEvent", "POST"},
    {"/VELTA/AccessControl/FingerPrintCfg/capabilities", "GET"},
    {"/VELTA/AccessControl/CardReaderCfg/1", "GET PUT"},
    {"/VELTA/AccessControl/FingerPrintDownload", "POST"},
    {"/VELTA/AccessControl/FingerPrintProgress", "GET"},
    {"/VELTA/AccessControl/FingerPrintModify", "POST"},
    {"/VELTA/AccessControl/FingerPrintUpload", "POST"},
    {"/VELTA/AccessControl/FingerPrint/Delete", "PUT"},
    {"/VELTA/AccessControl/FingerPrint/DeleteProcess", "GET"},
    {"/VELTA/AccessControl/FingerPrint/Delete/capabilities", "GET"},
    {"/VELTA/AccessControl/CaptureFingerPrint/capabilities", "GET"},
    {"/VELTA/AccessControl/CaptureFingerPrint", "POST"},
    {"/VELTA/Event/notification/httpHosts", "GET POST PUT DELETE"},
};

void methods(Trial& trial) {
    Scene scene(trial);
    for (const Route& route : kRoutes) {
        const std::string uri = std::string(route.path) + "?format=json&devIndex=1";
        for (const std::string method : {"GET", "PUT", "POST", "DELETE", "get", "PATCH"}) {
            if (std::string_view(route.methods).find(method) != std::string_view::npos) continue;
            isStatus(trial, "answer to " + method + " " + route.path, kNotSupported,
                     scene.session.request(method, uri, "{}"));
        }
    }
    trial.number("requests at the device", 0, scene.requests().size());
}

void reads(Trial& trial) {
    Scene scene(trial);
    for (const char* path :
         {"UserInfo/Count", "UserInfoDetail/DeleteProcess", "CardInfo/Count", "FingerPrintProgress",
          "FingerPrintCfg/capabilities", "FingerPrint/DeleteProcess", "FingerPrint/Delete/capabilities",
          "CardReaderCfg/1", "UserRightHolidayPlanCfg/2", "UserRightHolidayGroupCfg/3",
          "UserRightWeekPlanCfg/4", "UserRightPlanTemplate/5", "FaceRecognizeMode"}) {
        scene.device.setAnswer("GET", kAccess + path, 200, "{ \"a\": [1,\n 2],\n \"b\": \"x y\" }\n");
        const std::string answer = scene.session.request("GET", kAccess + path + "?format=json&more=1");
        trial.text(std::string("answer to ") + path, "{\"a\":[1,2],\"b\":\"x y\"}\n", answer);
        trial.text(std::string("target of ") + path, kAccess + path + "?format=json",
                   scene.lastRequest().target);
    }
}

// Matched by no route: without "devIndex" they are refused, with it they are forwarded.
void nearMisses(Trial& trial) {
    Scene scene(trial);
    for (const char* path : {"Door/param/01", "Door/param/+1", "Door/param/one", "Door/param/",
                             "Door/param/1/", "Door/param/1/2", "UserInfo/count", "UserInfo/Count/",
                             "UserInfo", "AcsEvents", "CardReaderCfg/ 1", "CardReaderCfg/1.0"}) {
        const std::string uri = kAccess + path + "?format=json";
        isStatus(trial, "answer to " + uri, kBadParameter, scene.session.request("GET", uri));
        scene.device.forgetRequests();
        if (std::string_view(path).find(' ') != std::string_view::npos) continue;
        scene.session.request("GET", uri + "&devIndex=1");
        trial.text("target of " + uri, uri, scene.lastRequest().target);
    }
}

void withoutMark(Trial& trial) {
    Scene scene(trial);
    for (const Route& route : kRoutes) {
        const std::string method =
            std::string(route.methods).substr(0, std::string_view(route.methods).find(' '));
        scene.device.setAnswer(method, route.path, 200, "as it is");
        const std::string body = method == "GET" ? "" : "no JSON";
        trial.text("answer to " + method + " " + route.path, "as it is",
                   scene.session.request(method, std::string(route.path) + "?devIndex=1", body));
        // A reboot never has a body.
        const bool hasBody = route.path != std::string_view("/VELTA/System/reboot");
        trial.text("body of " + method + " " + route.path, hasBody ? body : "", scene.lastRequest().body);
    }
}

struct Refusal {
    const char* method;
    const char* path;
    const char* body;
};
constexpr Refusal kRefusals[] = {
    {"GET", "/VELTA/System/Network/interfaces/0", ""},
    {"PUT", "/VELTA/System/Network/interfaces/-1", "{}"},
    {"PUT", "/VELTA/System/deviceInfo", R"({"DeviceInfo":{"deviceName":"a"}})"},
    {"PUT", "/VELTA/System/time", R"({"Time":{"timeMode":"NTP","localTime":"2026-01-01T10:00:00Z"}})"},
    {"PUT", "/VELTA/System/time/timeZone", R"({"timeZone":8})"},
    {"POST", "/VELTA/AccessControl/UserInfo/Record", R"({"UserInfo":[]})"},
    {"POST", "/VELTA/AccessControl/UserInfo/Record", R"({"UserInfo":[{"employeeNo":"1"}]})"},
    {"PUT", "/VELTA/AccessControl/UserInfo/Modify", R"({"UserInfo":{"employeeNo":"1","userType":"guest"}})"},
    {"PUT", "/VELTA/AccessControl/UserInfoDetail/Delete",
     R"({"UserInfoDetail":{"mode":"byEmployeeNo","EmployeeNoList":[]}})"},
    {"POST", "/VELTA/AccessControl/UserInfo/Search",
     R"({"UserInfoSearchCond":{"searchID":"1","searchResultPosition":-1,"maxResults":1}})"},
    {"POST", "/VELTA/AccessControl/CardInfo/Record", R"({"CardInfo":{"employeeNo":"1","cardNo":5}})"},
    {"PUT", "/VELTA/AccessControl/CardInfo/Delete",
     R"({"CardInfoDelCond":{"EmployeeNoList":[],"CardNoList":[]}})"},
    {"PUT", "/VELTA/Intelligent/FDLib/FDSetUp", R"({"FPID":"1","faceLibType":"blackFD"})"},
    {"PUT", "/VELTA/AccessControl/RemoteControl/door/1", R"({"RemoteControlDoor":{"cmd":"Open"}})"},
    {"PUT", "/VELTA/AccessControl/RemoteControl/door/3", R"({"RemoteControlDoor":{"cmd":"open"}})"},
    {"PUT", "/VELTA/AccessControl/RemoteControl/door/0", R"({"RemoteControlDoor":{"cmd":"open"}})"},
    {"PUT", "/VELTA/AccessControl/Door/param/65535", R"({"DoorParam":{"doorName":"a"}})"},
    {"PUT", "/VELTA/AccessControl/UserRightWeekPlanCfg/1",
     R"({"UserRightWeekPlanCfg":{"enable":true,"WeekPlanCfg":[{"id":1,"enable":true,"week":1,)"
     R"("TimeSegment":{"beginTime":"0","endTime":"1"}}]}})"},
    {"PUT", "/VELTA/AccessControl/UserRightPlanTemplate/1",
     R"({"UserRightPlanTemplate":{"enable":true,"templateName":"a","weekPlanNo":"1","holidayGroupNo":""}})"},
    {"PUT", "/VELTA/AccessControl/FaceRecognizeMode", R"({"FaceRecognizeMode":{"mode":"DeepMode"}})"},
    {"POST", "/VELTA/AccessControl/AcsEvent",
     R"({"AcsEventSearchDescription":{"searchID":"1","searchResultPosition":0,"maxResults":-1}})"},
    {"PUT", "/VELTA/Event/notification/httpHosts", R"({"HttpHostNotificationList":[]})"},
};

void wrongBodies(Trial& trial) {
    Scene scene(trial);
    const auto refuses = [&](const Refusal& row, const std::string& body) {
        isStatus(trial, std::string("answer to ") + row.method + " " + row.path + " " + shown(body),
                 kBadParameter,
                 scene.session.request(row.method, std::string(row.path) + "?format=json", body));
    };
    for (const Refusal& row : kRefusals) {
        refuses(row, row.body);
        if (std::string_view(row.method) == "GET") continue;
        for (const char* body : {"", "no JSON", "[]", "{}"})
            refuses(row, body);
    }
    const auto requests = scene.requests();
    trial.holds("the device is asked to change nothing",
                std::all_of(requests.begin(), requests.end(),
                            [](const auto& request) { return request.method == "GET"; }));
}

constexpr Check kChecks[] = {
    {"routes", "methods", "another method than a route's own gives 0x40000001, and no request", methods},
    {"routes", "reads", "plain reads go to the same path, and come back compactly", reads},
    {"routes", "near-misses", "only the exact path is a route, with a number as it is usually written",
     nearMisses},
    {"routes", "without-mark", "without \"format=json\" a route's path is forwarded like any other",
     withoutMark},
    {"routes", "wrong-bodies", "a body that is not as promised gives 0x60000001 and changes nothing",
     wrongBodies},
};

}  // namespace

std::span<const Check> routeChecks() {
    return kChecks;
}

}  // namespace check
