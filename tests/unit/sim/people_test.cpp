#include "client.h"

using testing::HasSubstr;
using veltasim::Device;

namespace {

constexpr const char* kAccess = "/VELTA/AccessControl/";
const std::string kFaces = "/VELTA/Intelligent/FDLib";
const std::string kJpeg = std::string("\xff\xd8\0\r\n\r\n--\xff\xd9", 11);

class People : public velta_test::DeviceTest {
 protected:
    People() : DeviceTest({.backgroundTime = std::chrono::milliseconds(0), .capacity = {3, 3, 2, 3, 2, 2}}) {
        ask(R"(
POST UserInfo/Record {"UserInfo":{"employeeNo":"1","name":"Ada","own":[1]}} -> 200 {"statusCode":1,"statusString":"OK","subStatusCode":"ok"}
POST UserInfo/Record {"UserInfo":{"employeeNo":"2"}} -> 200)");
    }
    void ask(const std::string& script) { client.talk(kAccess, script); }
    // The form as clients write it: the length of the JSON part may be too great.
    std::string face(const char* method, const char* target, const char* fpid, const std::string& picture) {
        const std::string part = "----boundary\r\nContent-Disposition: form-data; name=\"";
        const std::string form = part + "FaceDataRecord\";\r\nContent-Length: 999\r\n\r\n" +
                                 R"({"FDID":"1","faceLibType":"blackFD","FPID":")" + fpid + "\"}\r\n" + part +
                                 "FaceImage\";\r\n\r\n" + picture + "\r\n----boundary--\r\n";
        return client
            .send(method, kFaces + target + "?format=json", form, "multipart/form-data; boundary=--boundary")
            .body;
    }
};

TEST_F(People, areKeptAsTheyCame) {
    ask(R"(
POST UserInfo/Record { -> 400 "badJsonFormat","errorCode":1342177282
POST UserInfo/Record {"UserInfo":{"employeeNo":"3","userType":"guest"}} -> 400 "badParameters"
POST UserInfo/Record {"UserInfo":{"employeeNo":"3","doorRight":"3"}} -> 400 "badParameters"
POST UserInfo/Record {"UserInfo":{"employeeNo":"3","Valid":{"beginTime":"2026-01-02T00:00:00","endTime":"2026-01-01T00:00:00"}}} -> 400 "endtimeEarlierThanBegintime"
PUT UserInfo/Modify {"UserInfo":{"employeeNo":"9"}} -> 400 "employeeNoNotExist","errorCode":1610637343
PUT UserInfo/Modify {"UserInfo":{"employeeNo":"1","Valid":{"enable":true}}} -> 200
PUT UserInfo/Modify {"UserInfo":{"employeeNo":"1","userType":"visitor","Valid":{"timeType":"UTC"}}} -> 200
POST UserInfo/Record {"UserInfo":{"employeeNo":"3"}} -> 200
POST UserInfo/Record {"UserInfo":{"employeeNo":"4"}} -> 400 "deviceUserFull","errorCode":1610641408
POST UserInfo/Search {"UserInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":2}} -> 200 {"UserInfoSearch":{"UserInfo":[{"Valid":{"enable":true,"timeType":"UTC"},"employeeNo":"1","name":"Ada","own":[1],"userType":"visitor"},{"employeeNo":"2"}],"numOfMatches":2,"responseStatusStrg":"MORE","searchID":"s","totalMatches":3}}
POST UserInfo/Search {"UserInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":9,"EmployeeNoList":[{"employeeNo":"3"},{"employeeNo":"8"}]}} -> 200 [{"employeeNo":"3"}],"numOfMatches":1)");
}

TEST_F(People, haveCards) {
    ask(R"(
POST CardInfo/Record {"CardInfo":{"cardNo":"11","employeeNo":"1"}} -> 200
POST CardInfo/Record {"CardInfo":{"cardNo":"12","employeeNo":"1"}} -> 200
POST CardInfo/Record {"CardInfo":{"cardNo":"13","employeeNo":"1"}} -> 400 "cardFullPerUser","errorCode":1610641413
POST CardInfo/Record {"CardInfo":{"cardNo":"21","employeeNo":"2"}} -> 200
POST CardInfo/Record {"CardInfo":{"cardNo":"22","employeeNo":"2"}} -> 400 "deviceCardFull","errorCode":1610637320
PUT CardInfo/Modify {"CardInfo":{"cardNo":"12","employeeNo":"2","cardType":"superCard"}} -> 200
POST CardInfo/Search {"CardInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":9,"EmployeeNoList":[{"employeeNo":"2"}]}} -> 200 "CardInfo":[{"cardNo":"21","cardType":"normalCard","employeeNo":"2"},{"cardNo":"12","cardType":"superCard"
PUT CardInfo/Delete {"CardInfoDelCond":{}} -> 400 "badParameters"
PUT CardInfo/Delete {"CardInfoDelCond":{"CardNoList":[{"cardNo":"11"},{"cardNo":"99"}]}} -> 200
PUT CardInfo/Delete {"CardInfoDelCond":{"EmployeeNoList":[{"employeeNo":"2"}]}} -> 200
POST CardInfo/Search {"CardInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":9}} -> 200 {"CardInfoSearch":{"numOfMatches":0,"responseStatusStrg":"NO MATCH")");
}

TEST_F(People, haveFaces) {
    EXPECT_THAT(face("POST", "/FaceDataRecord", "9", kJpeg), HasSubstr("employeeNoNotExist"));
    EXPECT_THAT(face("POST", "/FaceDataRecord", "1", "GIF"), HasSubstr("picFormatError"));
    EXPECT_THAT(face("POST", "/FaceDataRecord", "1", kJpeg), HasSubstr("\"ok\""));
    EXPECT_THAT(face("POST", "/FaceDataRecord", "1", kJpeg), HasSubstr("deviceUserAlreadyExistFace"));
    ask(R"(POST UserInfo/Record {"UserInfo":{"employeeNo":"a/b"}} -> 200)");
    EXPECT_THAT(face("PUT", "/FDSetUp", "a/b", "\xff\xd8old"), HasSubstr("\"ok\""));
    EXPECT_THAT(face("PUT", "/FDSetUp", "a/b", kJpeg), HasSubstr("\"ok\""));
    EXPECT_THAT(face("PUT", "/FDSetUp", "2", kJpeg), HasSubstr("deviceFaceFull"));
    EXPECT_EQ(client.get(kFaces + "/Pictures/1/a%2Fb").body, kJpeg);
    EXPECT_EQ(client.get(kFaces + "/Pictures/2/1").status, 404);
    client.talk(kFaces, R"(
GET /Count -> 200 [{"FDID":"1","faceLibType":"blackFD","name":"Persons","recordDataNumber":2}
POST /FDSearch {"searchResultPosition":0,"maxResults":5,"faceLibType":"blackFD","FDID":"1","FPID":"2"} -> 200 {"numOfMatches":0,"responseStatusStrg":"NO MATCH","statusCode":1
PUT /FDSearch?format=json&FDID=1&FPID=a%2Fb&faceLibType=blackFD {"faceURL":"http://x/y.jpg"} -> 200
POST /FDSearch {"searchResultPosition":0,"maxResults":5,"faceLibType":"blackFD","FDID":"1","FPID":"a/b"} -> 200 "MatchList":[{"FPID":"a/b","faceURL":"http://x/y.jpg"}]
PUT /FDSearch/Delete?format=json&FDID=2&faceLibType=blackFD {"FPID":[]} -> 400 "faceLibraryIDError"
PUT /FDSearch/Delete?format=json&FDID=1&faceLibType=blackFD {"FPID":[{"value":"a/b"},{"value":"2"}]} -> 400 "deleteNoExistFace","errorCode":1610637333
PUT /FDSearch/Delete?format=json&FDID=1&faceLibType=blackFD {"FPID":[{"value":"a/b"}]} -> 200
GET /Count -> 200 "recordDataNumber":1)");
}

TEST_F(People, haveFingers) {
    ask(R"(
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"1","fingerPrintID":1,"fingerData":"QQ==","enableCardReader":[1,2]}} -> 200
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"1","fingerPrintID":1,"fingerData":"QQ=="}} -> 400 "fingerPrintIDAlreadyExist","errorCode":1610637387
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"1","fingerPrintID":11,"fingerData":"QQ=="}} -> 400 "errorFingerID"
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"1","fingerPrintID":2,"fingerData":"QQ==","enableCardReader":[3]}} -> 400 "illegalCardReaderNo","errorCode":1610637365
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"1","fingerPrintID":2,"fingerData":"QQ==","enableCardReader":[2]}} -> 200
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"1","fingerPrintID":3,"fingerData":"QQ=="}} -> 400 "fingerprintFullPerUser","errorCode":1610641414
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"2","fingerPrintID":1,"fingerData":"QQ==","enableCardReader":[2]}} -> 200
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"2","fingerPrintID":2,"fingerData":"QQ=="}} -> 400 "fingerprintFull","errorCode":1610637376
POST FingerPrintModify {"FingerPrintModify":{"employeeNo":"1","cardReaderNo":2,"fingerPrintID":2,"fingerType":"superFP"}} -> 200
POST FingerPrintUpload {"FingerPrintCond":{"searchID":"s","employeeNo":"1"}} -> 200 {"FingerPrintInfo":{"FingerPrintList":[{"cardReaderNo":1,"fingerData":"QQ==","fingerPrintID":1,"fingerType":"normalFP"},{"cardReaderNo":2,"fingerData":"QQ==","fingerPrintID":1,"fingerType":"normalFP"},{"cardReaderNo":2,"fingerData":"QQ==","fingerPrintID":2,"fingerType":"superFP"}],"searchID":"s","status":"OK"}}
PUT FingerPrint/Delete {"FingerPrintDelete":{"mode":"byEmployeeNo","employeeNo":"1","fingerPrintID":[2]}} -> 200
PUT FingerPrint/Delete {"FingerPrintDelete":{"mode":"byCardReader","cardReaderNo":2}} -> 200
POST FingerPrintUpload {"FingerPrintCond":{"searchID":"s","employeeNo":"1"}} -> 200 [{"cardReaderNo":1,"fingerData":"QQ==","fingerPrintID":1,"fingerType":"normalFP"}]
POST FingerPrintUpload {"FingerPrintCond":{"searchID":"s","employeeNo":"2"}} -> 200 [],"searchID":"s","status":"NONE")");
}

TEST_F(People, outliveTheDeviceAndTakeWithThemWhatTheyHave) {
    ask(R"(
POST CardInfo/Record {"CardInfo":{"cardNo":"11","employeeNo":"1"}} -> 200
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"1","fingerPrintID":1,"fingerData":"QQ=="}} -> 200
PUT UserRightWeekPlanCfg/2 {"UserRightWeekPlanCfg":{"enable":true}} -> 200
PUT RemoteControl/door/2 <RemoteControlDoor><cmd>alwaysOpen</cmd></RemoteControlDoor> -> 200)");
    EXPECT_THAT(face("POST", "/FaceDataRecord", "1", kJpeg), HasSubstr("\"ok\""));
    device.presentCard("11");
    const std::string saved = device.saveState();
    Device other({.backgroundTime = std::chrono::hours(1)});
    other.loadState(saved);
    EXPECT_EQ(other.saveState(), saved);
    other.start();
    EXPECT_EQ(other.presentFace("1").outcome, veltasim::Outcome::NoDoorRight);
    EXPECT_TRUE(other.doorIsOpen(2));
    EXPECT_EQ(other.sendAccessEvent(), 3U);
    velta_test::Client(other).talk(kAccess, R"(
GET FingerPrintProgress -> 200 "status":"success"
POST FingerPrintDownload {"FingerPrintCfg":{"employeeNo":"2","fingerPrintID":1,"fingerData":"QQ=="}} -> 200
GET FingerPrintProgress -> 200 "done":0,"status":"processing")");

    const auto broken = [&](const std::string& from, const std::string& to) {
        std::string text = saved;
        return text.replace(text.find(from), from.size(), to);
    };
    const std::pair<std::string, const char*> cases[] = {
        {"{", "badJsonFormat"},
        {"{}", "no state"},
        {broken("\"/9gADQo", "\"?9gADQo"), "faces[0]: badParameters, picture"},
        {broken("\"cardNo\" : \"11\"", "\"cardNo\" : 11"), "cards[0]"},
        {broken("\"mode\" : 2", "\"mode\" : 7"), "doors[1]: badParameters, mode"},
    };
    for (const auto& [text, where] : cases) {
        EXPECT_THAT(std::bind(&Device::loadState, &device, text),
                    testing::ThrowsMessage<std::runtime_error>(HasSubstr(where)));
    }
    EXPECT_EQ(device.saveState(), saved);
    ask(R"(
PUT UserInfoDetail/Delete {"UserInfoDetail":{"mode":"byEmployeeNo","EmployeeNoList":[{"employeeNo":"1"},{"employeeNo":"9"}]}} -> 200
GET UserInfoDetail/DeleteProcess -> 200 {"UserInfoDetailDeleteProcess":{"status":"failed"}}
GET CardInfo/Count -> 200 "cardNumber":0
POST FingerPrintUpload {"FingerPrintCond":{"searchID":"s","employeeNo":"1"}} -> 400 "employeeNoNotExist"
PUT UserInfoDetail/Delete {"UserInfoDetail":{"mode":"all"}} -> 200
GET UserInfoDetail/DeleteProcess -> 200 "success"
GET UserInfo/Count -> 200 "personNumber":0)");
}

}  // namespace
