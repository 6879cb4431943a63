// What requests of access control become on their way to the device and back.
#include <algorithm>

#include "answers.h"
#include "check.h"
#include "library.h"

namespace check {
namespace {

const std::string kMark = "?format=json";
const std::string kAccess = "/VELTA/AccessControl/";

struct Body {
    const char* path;
    std::string sent;
    std::string arrives;
};

void writtenBodies(Trial& trial) {
    const std::string segment = R"("TimeSegment" : {"beginTime":"00:00:00",  "endTime":"01:00:00"})";
    const std::string holiday =
        "{\n \"UserRightHolidayPlanCfg\": {\"enable\":true, \"beginDate\":\"a\", \"endDate\":\"b\",\n"
        "\"HolidayPlanCfg\":[{\"id\":1,\"enable\":true," +
        segment + "}], \"more\": 1.50}}\n";
    const std::string group =
        R"({"UserRightHolidayGroupCfg":{"groupName":"g  h", "enable":false,"holidayPlanNo":"1"} })";
    const std::string mode = R"( {"FaceRecognizeMode": {"mode": "deepMode"}})";
    const std::string week =
        "{\"UserRightWeekPlanCfg\": {\"enable\": true,\r\n\t\"WeekPlanCfg\": [{\"id\":1,\"enable\":true,"
        "\"week\":\"Mon day\"," +
        segment + "}]}}";
    const std::string weekArrives =
        R"({"UserRightWeekPlanCfg":{"enable":true,"WeekPlanCfg":[{"id":1,"enable":true,"week":"Monday",)"
        R"("TimeSegment":{"beginTime":"00:00:00","endTime":"01:00:00"}}]}})";
    Scene scene(trial);
    for (const Body& body :
         {Body{"UserRightHolidayPlanCfg/1", holiday, holiday},
          Body{"UserRightHolidayGroupCfg/1", group, group}, Body{"FaceRecognizeMode", mode, mode},
          Body{"UserRightWeekPlanCfg/1", week, weekArrives}}) {
        scene.device.setAnswer("PUT", kAccess + body.path, 200, R"({"statusCode":1})");
        scene.session.request("PUT", kAccess + body.path + kMark, body.sent);
        const auto request = scene.lastRequest();
        trial.text("target", kAccess + body.path + kMark, request.target);
        trial.text(std::string("body of ") + body.path, body.arrives, request.body);
    }
}

std::string person(int number, const std::string& more = "") {
    return R"({"employeeNo":")" + std::to_string(number) +
           R"(","Valid":{"beginTime":"2026-01-01T00:00:00","endTime":"2027-01-01T00:00:00"})" + more + "}";
}

void personBatch(Trial& trial) {
    Scene scene(trial);
    const std::string uri = kAccess + "UserInfo/Record" + kMark;
    const Json::Value out =
        mustBeObject(trial, "answer to a batch",
                     scene.session.request("POST", uri,
                                           "{\"UserInfo\":[" + person(1) + "," +
                                               person(2, R"(,"userType":"visitor","doorRight":"2")") + "]}"));
    const Json::Value& list = out["UserInfoOutList"]["UserInfoOut"];
    trial.must(trial.number("items of the answer", 2, list.size()));
    for (Json::ArrayIndex i = 0; i < 2; ++i) {
        trial.text("employeeNo of the item", std::to_string(i + 1), list[i]["employeeNo"].asString());
        trial.text("subStatusCode of the item", "ok", list[i]["subStatusCode"].asString());
    }
    std::vector<Json::Value> sent;
    for (const auto& request : scene.requests()) {
        if (request.method == "POST" && request.status == 200)
            sent.push_back(mustBeObject(trial, "body at the device", request.body)["UserInfo"]);
    }
    trial.must(trial.number("requests, one for each person", 2, sent.size()));
    trial.text("userType by default", "normal", sent[0]["userType"].asString());
    trial.text("doorRight by default", "1", sent[0]["doorRight"].asString());
    trial.holds("Valid.enable is true by default", sent[0]["Valid"]["enable"] == true);
    trial.text("planTemplateNo by default", "1", sent[0]["RightPlan"][0]["planTemplateNo"].asString());
    trial.text("userType that was given", "visitor", sent[1]["userType"].asString());
    std::string many = person(1);
    for (int i = 2; i <= 31; ++i)
        many += "," + person(i);
    isStatus(trial, "answer to a batch of 31", kBadParameter,
             scene.session.request("POST", uri, "{\"UserInfo\":[" + many + "]}"));
    scene.session.connection().DisConnect(scene.session.instance());
    isStatus(trial, "answer to a single person while the session is not online", 0x30008007,
             scene.session.request("POST", uri, "{\"UserInfo\":" + person(1) + "}"));
}

void cards(Trial& trial) {
    Scene scene(trial);
    const std::string card = R"({"CardInfo":{"employeeNo":"1","cardNo":"77"}})";
    scene.device.setAnswer("POST", kAccess + "CardInfo/Record", 200, R"({"statusCode":1})");
    scene.session.request("POST", kAccess + "CardInfo/Record" + kMark, card);
    const Json::Value sent = mustBeObject(trial, "card at the device", scene.lastRequest().body);
    trial.text("cardType by default", "normalCard", sent["CardInfo"]["cardType"].asString());
    scene.device.setAnswer("PUT", kAccess + "CardInfo/Modify", 403,
                           R"({"statusCode":3,"errorCode":805306388})");
    isStatus(trial, "answer to a change of a card that is not there", 0x60006003,
             scene.session.request("PUT", kAccess + "CardInfo/Modify" + kMark, card));
    scene.device.setAnswer("POST", kAccess + "CardInfo/Search", 200,
                           R"({"CardInfoSearch":{"searchID":"s","responseStatusStrg":"OK","numOfMatches":1,)"
                           R"("totalMatches":1,"CardInfo":[{"employeeNo":"1","cardNo":"77",)"
                           R"("cardType":"superCard","more":1}]}})");
    const Json::Value page = mustBeObject(
        trial, "page of cards",
        scene.session.request(
            "POST", kAccess + "CardInfo/Search" + kMark,
            R"({"CardInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":5}})"));
    trial.number("members of a card in the page", 3, page["CardInfoSearch"]["CardInfo"][0].size());
    trial.number("totalMatches", 1, page["CardInfoSearch"]["totalMatches"].asInt());
}

void faces(Trial& trial) {
    Scene scene(trial);
    scene.device.setAnswer("GET", "/VELTA/Intelligent/FDLib", 200,
                           R"({"FDLib":[{"faceLibType":"blackFD","FDID":"4"}]})");
    scene.device.setAnswer("POST", "/VELTA/Intelligent/FDLib/FaceDataRecord", 200, R"({"statusCode":1})");
    scene.session.request("POST", "/VELTA/Intelligent/FDLib/FaceDataRecord" + kMark,
                          R"({"FaceInfo":{"employeeNo":"9","hexImg":"FFd8ff00"}})");
    const auto request = scene.lastRequest();
    trial.text("type of the form", "multipart/form-data; boundary=--boundary",
               request.header("Content-Type"));
    const std::string start =
        "----boundary\r\nContent-Disposition: form-data; name=\"FaceDataRecord\";\r\n"
        "Content-Type: application/json\r\nContent-Length: ";
    trial.text("start of the form", start, request.body.substr(0, start.size()));
    for (const char* member : {R"("FDID":"4")", R"("FPID":"9")", R"("faceLibType":"blackFD")"})
        trial.contains("form", member, request.body);
    const std::string image =
        "----boundary\r\nContent-Disposition: form-data; name=\"FaceImage\";\r\n"
        "Content-Type: image/jpeg\r\nContent-Length: 4\r\n\r\n" +
        std::string("\xFF\xD8\xFF\0", 4) + "\r\n----boundary--\r\n";
    trial.text("end of the form", image,
               request.body.substr(request.body.size() - std::min(request.body.size(), image.size())));
}

void doors(Trial& trial) {
    Scene scene(trial);
    scene.session.request("PUT", kAccess + "RemoteControl/door/2" + kMark,
                          R"({"RemoteControlDoor":{"cmd":"open"}})");
    trial.holds("door 2 is open", scene.device.doorIsOpen(2));
    trial.holds("door 1 is not", !scene.device.doorIsOpen(1));
    trial.contains("document at the device", "<cmd>open</cmd>", scene.lastRequest().body);
    scene.session.request("PUT", kAccess + "RemoteControl/door/65535" + kMark,
                          R"({"RemoteControlDoor":{"cmd":"alwaysOpen"}})");
    trial.holds("all doors are open", scene.device.doorIsOpen(1) && scene.device.doorIsOpen(2));
    scene.session.request("PUT", kAccess + "Door/param/1" + kMark, R"({"DoorParam":{"doorName":"North"}})");
    const Json::Value name = mustBeObject(trial, "name of the door",
                                          scene.session.request("GET", kAccess + "Door/param/1" + kMark));
    trial.text("doorName", "North", name["DoorParam"]["doorName"].asString());
    const Json::Value work =
        mustBeObject(trial, "work status", scene.session.request("GET", kAccess + "AcsWorkStatus" + kMark));
    trial.number("items of doorStatus", 2, work["AcsWorkStatus"]["doorStatus"].size());
}

void eventSearch(Trial& trial) {
    Scene scene(trial);
    scene.device.setAnswer(
        "POST", kAccess + "AcsEvent", 200,
        R"({"AcsEvent":{"searchID":"s","responseStatusStrg":"OK","numOfMatches":1,"totalMatches":9,)"
        R"("InfoList":[{"major":5}]}})");
    const std::string answer = scene.session.request(
        "POST", kAccess + "AcsEvent" + kMark,
        R"({"AcsEventSearchDescription":{"searchID":"s","searchResultPosition":0,"maxResults":1,)"
        R"("AcsEventFilter":{"employeeNo":"1001","startTime":"t"}}})");
    const Json::Value sent =
        mustBeObject(trial, "condition at the device", scene.lastRequest().body)["AcsEventCond"];
    trial.text("employeeNoString", "1001", sent["employeeNoString"].asString());
    trial.text("startTime", "t", sent["startTime"].asString());
    trial.holds("major and minor are 0 by default", sent["major"] == 0 && sent["minor"] == 0);
    trial.number("members of the condition", 7, sent.size());
    const Json::Value result = mustBeObject(trial, "page", answer)["AcsEventSearchResult"];
    trial.number("totalMatches", 9, result["totalMatches"].asInt());
    trial.number("major of the first match", 5, result["MatchList"][0]["major"].asInt());
}

constexpr Check kChecks[] = {
    {"access", "written-bodies", "schedules arrive byte for byte, week plans without white space",
     writtenBodies},
    {"access", "person-batch", "a batch becomes one request for each person, with defaults", personBatch},
    {"access", "cards", "cards get their type; a page keeps three members of each", cards},
    {"access", "faces", "a picture in hexadecimal becomes the bytes of a form", faces},
    {"access", "doors", "doors open, all or one, and have names", doors},
    {"access", "event-search", "a search speaks the host's words outside and the device's inside",
     eventSearch},
};

}  // namespace

std::span<const Check> accessChecks() {
    return kChecks;
}

}  // namespace check
