// A site from empty to empty: everything that a host does with an access controller, in one go, through the built
// library against a simulated device that keeps real state.
#include "../wait.h"
#include "fixture.h"

using namespace host;
using testing::HasSubstr;

namespace {

constexpr int kPersons = 100;
constexpr int kBatch = 30;
const std::string kAccess = "/VELTA/AccessControl/";
const std::string kFaces = "/VELTA/Intelligent/FDLib";

std::string compact(const Json::Value& value) {
    Json::StreamWriterBuilder writer;
    writer["indentation"] = "";
    return Json::writeString(writer, value);
}

std::string hex(std::string_view bytes) {
    std::ostringstream text;
    for (const char byte : bytes) {
        text.width(2);
        text.fill('0');
        text << std::hex << static_cast<int>(static_cast<unsigned char>(byte));
    }
    return text.str();
}

std::string employee(int number) {
    return std::to_string(1000 + number);
}

struct SiteTest : SessionTest {
    SiteTest() : SessionTest({.doors = 2}) {}
    void SetUp() override {
        SessionTest::SetUp();
        ASSERT_EQ(library.setConfig("SetEventSub", "1"), VELTA_OK);
        ASSERT_TRUE(session->waitForStatus(VELTA_STATUS_ONLINE));
    }

    Json::Value ask(const std::string& method, const std::string& path, const std::string& body = "") {
        return parsed(session->request(method, path + "?format=json", body));
    }
    /* Done, says the device, or the plug-in. */
    void order(const std::string& method, const std::string& path, const std::string& body) {
        const Json::Value answer = ask(method, path, body);
        EXPECT_EQ(answer["statusCode"].asInt(), 1) << path << " " << compact(answer);
    }
    uint32_t errorOf(const std::string& method, const std::string& path, const std::string& body = "") {
        return ask(method, path, body)["errorCode"].asUInt();
    }
    int count(const std::string& path, const char* object, const char* member) {
        return ask("GET", path)[object][member].asInt();
    }
    /* What is searched, page by page. */
    std::vector<Json::Value> searchAll(const std::string& path, const std::string& condition,
                                       const std::string& result, const std::string& items,
                                       const std::string& more = "") {
        std::vector<Json::Value> found;
        for (;;) {
            const Json::Value page =
                ask("POST", path,
                    R"({")" + condition + R"(":{"searchID":"site","searchResultPosition":)" +
                        std::to_string(found.size()) + R"(,"maxResults":30)" + more + "}}")[result];
            EXPECT_EQ(page["searchID"].asString(), "site");
            for (const Json::Value& item : page[items])
                found.push_back(item);
            if (page["numOfMatches"].asUInt() == 0 || found.size() >= page["totalMatches"].asUInt())
                return found;
        }
    }
    /* Asks again until the device has finished. */
    void waitFor(const std::string& path, const char* object, const char* status) {
        EXPECT_TRUE(velta_test::waitUntil([&] { return ask("GET", path)[object]["status"] == status; }))
            << path;
    }

    void addPersons();
    void addCards();
    void addFaces();
    void addAFingerprint();
    void setSchedules();
    void useDoors();
    void passADoor();
    void useEventHosts();
    void deletePersons();
};

void SiteTest::addPersons() {
    for (int first = 1; first <= kPersons; first += kBatch) {
        Json::Value batch;
        for (int number = first; number < first + kBatch && number <= kPersons; ++number) {
            Json::Value person;
            person["employeeNo"] = employee(number);
            person["name"] = "Person " + std::to_string(number);
            person["Valid"]["beginTime"] = "2020-01-01T00:00:00";
            person["Valid"]["endTime"] = "2037-12-31T23:59:59";
            batch["UserInfo"].append(person);
        }
        for (const Json::Value& result :
             ask("POST", kAccess + "UserInfo/Record", compact(batch))["UserInfoOutList"]["UserInfoOut"])
            EXPECT_EQ(result["subStatusCode"].asString(), "ok") << compact(result);
    }
    EXPECT_EQ(count(kAccess + "UserInfo/Count", "UserInfoCount", "personNumber"), kPersons);
    const auto persons =
        searchAll(kAccess + "UserInfo/Search", "UserInfoSearchCond", "UserInfoSearch", "UserInfo");
    ASSERT_EQ(persons.size(), size_t{kPersons});
    EXPECT_EQ(persons.back()["employeeNo"].asString(), employee(kPersons));
    EXPECT_EQ(persons.back()["RightPlan"][0]["planTemplateNo"].asString(), "1");

    // Again: the device refuses each for itself, and the batch still succeeds.
    const Json::Value again = ask(
        "POST", kAccess + "UserInfo/Record",
        R"({"UserInfo":[{"employeeNo":"1001","Valid":{"beginTime":"2020-01-01T00:00:00","endTime":"2037-12-31T23:59:59"}}]})");
    EXPECT_EQ(again["UserInfoOutList"]["UserInfoOut"][0]["subStatusCode"].asString(),
              "employeeNoAlreadyExist");
    // One person goes as it stands, now that the device is online.
    EXPECT_EQ(ask("POST", kAccess + "UserInfo/Record", R"({"UserInfo":{"employeeNo":"1001"}})")["statusCode"]
                  .asInt(),
              6);
    // What becomes of orders whose exchange breaks, while the device still counts as online.
    device.setFault({.kind = veltasim::FaultKind::Drop, .path = kAccess + "UserInfo", .count = 1});
    EXPECT_EQ(errorOf("POST", kAccess + "UserInfo/Record", R"({"UserInfo":{"employeeNo":"1001"}})"),
              0x4000111DU);
    device.setFault({.kind = veltasim::FaultKind::MalformedBody, .path = kAccess + "UserInfo", .count = 1});
    EXPECT_EQ(ask("POST", kAccess + "UserInfo/Record",
                  R"({"UserInfo":[{"employeeNo":"1001","Valid":{"beginTime":"1","endTime":"2"}}]})")
                  ["UserInfoOutList"]["UserInfoOut"][0]["errorCode"]
                      .asUInt(),
              0x60000017U);
    device.setFault({.kind = veltasim::FaultKind::Drop, .path = kFaces + "/FaceDataRecord", .count = 1});
    EXPECT_EQ(
        errorOf("POST", kFaces + "/FaceDataRecord", R"({"FaceInfo":{"employeeNo":"1001","hexImg":"FF"}})"),
        0x4000111DU);
}

void SiteTest::addCards() {
    for (int number = 1; number <= kPersons; ++number)
        order("POST", kAccess + "CardInfo/Record",
              R"({"CardInfo":{"employeeNo":")" + employee(number) + R"(","cardNo":"55)" + employee(number) +
                  R"("}})");
    EXPECT_EQ(count(kAccess + "CardInfo/Count", "CardInfoCount", "cardNumber"), kPersons);
    EXPECT_EQ(
        searchAll(kAccess + "CardInfo/Search", "CardInfoSearchCond", "CardInfoSearch", "CardInfo").size(),
        size_t{kPersons});
    EXPECT_EQ(ask("POST", kAccess + "CardInfo/Record",
                  R"({"CardInfo":{"employeeNo":"1002","cardNo":"551001"}})")["subStatusCode"]
                  .asString(),
              "cardNoAlreadyExist");
    EXPECT_EQ(
        errorOf("PUT", kAccess + "CardInfo/Modify", R"({"CardInfo":{"employeeNo":"1002","cardNo":"77"}})"),
        0x60006003U);
    order("PUT", kAccess + "CardInfo/Delete", R"({"CardInfoDelCond":{"CardNoList":[{"cardNo":"551100"}]}})");
    EXPECT_EQ(count(kAccess + "CardInfo/Count", "CardInfoCount", "cardNumber"), kPersons - 1);
}

void SiteTest::addFaces() {
    const std::string picture = hex(veltasim::picture(veltasim::PictureSize::Medium));
    for (int number = 1; number <= 3; ++number)
        order("POST", kFaces + "/FaceDataRecord",
              R"({"FaceInfo":{"employeeNo":")" + employee(number) + R"(","hexImg":")" + picture + R"("}})");
    order("PUT", kFaces + "/FDSetUp", R"({"FPID":"1001","hexImg":")" + picture + R"("})");
    EXPECT_EQ(count(kFaces + "/Count", "FaceInfoCount", "faceNumber"), 3);
    const auto faces = searchAll(kFaces + "/FDSearch", "FaceInfoSearchCond", "FaceInfoSearch", "FaceInfo",
                                 R"(,"employeeNo":"1002")");
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_EQ(faces[0]["employeeNo"].asString(), "1002");
    order("PUT", kFaces + "/FDSearch/Delete",
          R"({"FaceInfoDelCond":{"EmployeeNoList":[{"employeeNo":"1003"}]}})");
    EXPECT_EQ(count(kFaces + "/Count", "FaceInfoCount", "faceNumber"), 2);
}

void SiteTest::addAFingerprint() {
    const std::string data =
        ask("POST", kAccess + "CaptureFingerPrint",
            R"({"CaptureFingerPrintCond":{"fingerNo":2}})")["CaptureFingerPrint"]["fingerData"]
            .asString();
    ASSERT_FALSE(data.empty());
    order("POST", kAccess + "FingerPrintDownload",
          R"({"FingerPrintCfg":{"employeeNo":"1001","fingerPrintID":2,"fingerData":")" + data + R"("}})");
    waitFor(kAccess + "FingerPrintProgress", "FingerPrintStatus", "success");
    const Json::Value back = ask("POST", kAccess + "FingerPrintUpload",
                                 R"({"FingerPrintCond":{"searchID":"s","employeeNo":"1001"}})");
    EXPECT_EQ(back["FingerPrintInfo"]["FingerPrintList"][0]["fingerData"].asString(), data) << compact(back);
}

void SiteTest::setSchedules() {
    Json::Value plan;
    plan["enable"] = true;
    for (const char* day : {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"}) {
        Json::Value segment;
        segment["id"] = plan["WeekPlanCfg"].size() + 1;
        segment["enable"] = true;
        segment["week"] = day;
        segment["TimeSegment"]["beginTime"] = "00:00:00";
        segment["TimeSegment"]["endTime"] = "24:00:00";
        plan["WeekPlanCfg"].append(segment);
    }
    order("PUT", kAccess + "UserRightWeekPlanCfg/2", R"({ "UserRightWeekPlanCfg": )" + compact(plan) + "}");
    EXPECT_EQ(ask("GET", kAccess + "UserRightWeekPlanCfg/2")["UserRightWeekPlanCfg"]["WeekPlanCfg"].size(),
              7U);
    order(
        "PUT", kAccess + "UserRightPlanTemplate/2",
        R"({"UserRightPlanTemplate":{"enable":true,"templateName":"Whole week","weekPlanNo":2,"holidayGroupNo":""}})");
    order(
        "PUT", kAccess + "UserInfo/Modify",
        R"({"UserInfo":{"employeeNo":"1001","doorRight":"1,2","RightPlan":[{"doorNo":1,"planTemplateNo":"2"},{"doorNo":2,"planTemplateNo":"2"}]}})");
    order("PUT", kAccess + "FaceRecognizeMode", R"({"FaceRecognizeMode":{"mode":"deepMode"}})");
    EXPECT_EQ(ask("GET", kAccess + "FaceRecognizeMode")["FaceRecognizeMode"]["mode"].asString(), "deepMode");
}

void SiteTest::useDoors() {
    order("PUT", kAccess + "Door/param/1", R"({"DoorParam":{"doorName":"East <gate>"}})");
    EXPECT_EQ(ask("GET", kAccess + "Door/param/1")["DoorParam"]["doorName"].asString(), "East <gate>");
    order("PUT", kAccess + "RemoteControl/door/2", R"({"RemoteControlDoor":{"cmd":"open"}})");
    EXPECT_TRUE(device.doorIsOpen(2));
    EXPECT_EQ(errorOf("PUT", kAccess + "RemoteControl/door/3", R"({"RemoteControlDoor":{"cmd":"open"}})"),
              0x60000001U);
    EXPECT_EQ(ask("GET", kAccess + "AcsWorkStatus")["AcsWorkStatus"]["doorStatus"].size(), 2U);
    const Json::Value capabilities = ask("GET", kAccess + "capabilities")["AccessControlCap"];
    EXPECT_EQ(capabilities["RemoteControlDoorCap"]["doorNo"]["@max"].asInt(), 2);
    EXPECT_GT(capabilities["maxPeopleRecordNum"].asInt(), kPersons);
}

void SiteTest::passADoor() {
    ASSERT_EQ(session->arm(), 0U);
    ASSERT_TRUE(device.waitForStreams(1, kDeadline));
    EXPECT_TRUE(device.presentCard("551001", 1).isGranted());
    ASSERT_TRUE(session->waitForEvents(1));  // of two events that arrive together one is lost
    EXPECT_FALSE(device.presentCard("99", 1).isGranted());
    ASSERT_TRUE(session->waitForEvents(2));
    const Event granted = session->events().at(0);
    EXPECT_THAT(granted.base.payload, HasSubstr(R"("cardNo":"551001")"));
    EXPECT_THAT(granted.base.payload, HasSubstr(R"("employeeNoString":"1001")"));
    EXPECT_THAT(granted.jpeg(), testing::StartsWith("\xff\xd8\xff"));
    EXPECT_TRUE(device.doorIsOpen(1));

    const auto found = searchAll(kAccess + "AcsEvent", "AcsEventSearchDescription", "AcsEventSearchResult",
                                 "MatchList", R"(,"AcsEventFilter":{"employeeNo":"1001"})");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]["cardNo"].asString(), "551001");
}

void SiteTest::useEventHosts() {
    const std::string path = "/VELTA/Event/notification/httpHosts";
    order(
        "PUT", path,
        R"({"HttpHostNotificationList":[{"HttpHostNotification":{"id":"1","url":"/events","protocolType":"HTTP",)"
        R"("addressingFormatType":"ipaddress","ipAddress":"127.0.0.1","portNo":9}}]})");
    const Json::Value hosts = ask("GET", path)["HttpHostNotificationList"];
    ASSERT_EQ(hosts.size(), 1U);
    EXPECT_EQ(hosts[0]["HttpHostNotification"]["ipAddress"].asString(), "127.0.0.1");
    order("DELETE", path, "");
    EXPECT_EQ(errorOf("GET", path), 0x40000001U);  // an empty list
}

void SiteTest::deletePersons() {
    order("PUT", kAccess + "UserInfoDetail/Delete",
          R"({"UserInfoDetail":{"mode":"byEmployeeNo","EmployeeNoList":[{"employeeNo":"1100"}]}})");
    waitFor(kAccess + "UserInfoDetail/DeleteProcess", "UserInfoDetailDeleteProcess", "success");
    EXPECT_EQ(count(kAccess + "UserInfo/Count", "UserInfoCount", "personNumber"), kPersons - 1);
    order("PUT", kAccess + "UserInfoDetail/Delete", R"({"UserInfoDetail":{"mode":"all"}})");
    waitFor(kAccess + "UserInfoDetail/DeleteProcess", "UserInfoDetailDeleteProcess", "success");
    EXPECT_EQ(count(kAccess + "UserInfo/Count", "UserInfoCount", "personNumber"), 0);
    EXPECT_EQ(count(kAccess + "CardInfo/Count", "CardInfoCount", "cardNumber"), 0);
    EXPECT_EQ(count(kFaces + "/Count", "FaceInfoCount", "faceNumber"), 0);
}

TEST_F(SiteTest, runsFromEmptyToEmpty) {
    addPersons();
    addCards();
    addFaces();
    addAFingerprint();
    setSchedules();
    useDoors();
    passADoor();
    useEventHosts();
    deletePersons();
    RecordProperty("requests", static_cast<int>(device.requests().size()));
}

}  // namespace
