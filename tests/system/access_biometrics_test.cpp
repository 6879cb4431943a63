// Faces and fingerprints.
#include "access.h"

using namespace host;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

const std::string kLibraries = "/VELTA/Intelligent/FDLib";
const std::string kFace = kLibraries + "/FaceDataRecord";
const std::string kSetUp = kLibraries + "/FDSetUp";
const std::string kSearch = kLibraries + "/FDSearch";
const std::string kDelete = kLibraries + "/FDSearch/Delete";
const std::string kCount = kLibraries + "/Count";
const std::string kReadLibraries = "GET " + kLibraries + "?format=json ";

const std::string kDownload = "/VELTA/AccessControl/FingerPrintDownload";
const std::string kModify = "/VELTA/AccessControl/FingerPrintModify";
const std::string kReadBack = "/VELTA/AccessControl/FingerPrintUpload";
const std::string kDeletePrint = "/VELTA/AccessControl/FingerPrint/Delete";
const std::string kCapture = "/VELTA/AccessControl/CaptureFingerPrint";

using Form = std::pair<std::string, std::string>;  // the JSON, the picture

class FaceTest : public AccessTest {
 protected:
    void SetUp() override {
        AccessTest::SetUp();
        libraries(R"([{"FDID":"1 &","faceLibType":"blackFD"},{"FDID":2,"faceLibType":"staticFD"},{},5])");
    }
    void libraries(const std::string& list) {
        script("GET", kLibraries, R"({"statusCode":1,"FDLib":)" + list + "}");
    }
    /* Refused when the libraries have been read. */
    void refusesLate(const std::string& method, const std::string& path,
                     const std::vector<std::string>& bodies) {
        for (const std::string& body : bodies) {
            EXPECT_EQ(ask(method, path, body), kBadParameter) << body;
            EXPECT_THAT(sent(), ElementsAre(kReadLibraries)) << body;
        }
    }
    /* The JSON and the picture of the form that was sent last. */
    Form form() {
        const std::string body = device.requests().back().body;
        const auto part = [&](size_t from) {
            const size_t start = body.find("\r\n\r\n", from) + 4;
            return body.substr(start, body.find("\r\n----boundary", start) - start);
        };
        EXPECT_THAT(body,
                    testing::StartsWith("----boundary\r\n"
                                        "Content-Disposition: form-data; name=\"FaceDataRecord\";\r\n"));
        return {part(0), part(body.find("name=\"FaceImage\""))};
    }
};

TEST_F(FaceTest, sendsAPictureAsAForm) {
    script("POST", kFace, kOk);
    EXPECT_EQ(ask("POST", kFace, R"({"FaceInfo":{"employeeNo":"1001","hexImg":"FFd8ff00E"}})"), kOk);
    EXPECT_EQ(sent().front(), kReadLibraries);
    EXPECT_EQ(device.requests().back().target, kFace + "?format=json");
    EXPECT_EQ(form(), (Form{R"({"FDID":"1 &","FPID":"1001","faceLibType":"blackFD"})",
                            std::string("\xff\xd8\xff\0\x0e", 5)}));
    // The announced length counts the line feed that is not sent.
    EXPECT_THAT(device.requests().back().body, HasSubstr("Content-Length: 53\r\n"));

    ask("POST", kFace, R"({"FaceInfo":{"employeeNo":"1","hexImg":"xx1x-1","faceLibType":"infraredFD"}})");
    EXPECT_EQ(form(),
              (Form{R"({"FDID":"","FPID":"1","faceLibType":"infraredFD"})", std::string("\0\x01\xff", 3)}));
    // A body in the device's own words asks for no library.
    EXPECT_EQ(ask("POST", kFace, R"({"FDID":"9", "hexImg":"4a"})"), kOk);
    EXPECT_EQ(device.requests().size(), 1U);
    EXPECT_EQ(form(), (Form{R"({"FDID":"9"})", "J"}));

    script("PUT", kSetUp, kOk);
    EXPECT_EQ(ask("PUT", kSetUp, R"({"FPID":"7","hexImg":"4A","faceLibType":"staticFD","x":1})"), kOk);
    EXPECT_EQ(form(), (Form{R"({"FDID":"2","FPID":"7","faceLibType":"staticFD","x":1})", "J"}));
}

TEST_F(FaceTest, carriesAPictureOfMegabytes) {
    script("POST", kFace, kOk);
    std::string hex;
    while (hex.size() < (size_t{8} << 20))
        hex += "FFD8FFE000104A46";
    EXPECT_EQ(ask("POST", kFace, R"({"FaceInfo":{"employeeNo":"1","hexImg":")" + hex + R"("}})"), kOk);
    EXPECT_GT(std::stoul(std::string(device.requests().back().header("Content-Length"))), hex.size() / 2);
}

TEST_F(FaceTest, tellsWhyAFaceWasNotTaken) {
    const std::string face = R"({"FaceInfo":{"employeeNo":"1001","hexImg":"FF"}})";
    const std::string full = R"({"statusCode":6,"errorCode":1610641409})";
    judges("POST", kFace, face, {{full, full, 400}, {"", kBadJsonContent}});
    // Not online: the session has not been checked yet.
    script("POST", kFace, kOk);
    device.setFault({.kind = veltasim::FaultKind::Drop, .path = kFace});
    EXPECT_EQ(ask("POST", kFace, face), "0x30008007");
    device.clearFaults();
    // A list that can't be read ends the request with its own error, not with the list.
    script("GET", kLibraries, R"({"statusCode":4,"errorCode":1073741825})");
    EXPECT_EQ(ask("POST", kFace, face), "0x40000001");
    script("GET", kLibraries, "<x/>");
    EXPECT_EQ(ask("PUT", kSetUp, "{}"), kBadParameter);
    EXPECT_EQ(sent().size(), 1U);

    refuses("POST", kFace,
            {"", "5", "[]", R"({"FaceInfo":{}})", R"({"FaceInfo":{"employeeNo":1,"hexImg":"FF"}})",
             R"({"FaceInfo":{"employeeNo":"1"}})"});
    libraries("[]");
    refusesLate("POST", kFace, {R"({"FaceInfo":{"employeeNo":"1","hexImg":"FF","faceLibType":"BlackFD"}})"});
    refusesLate("PUT", kSetUp,
                {"{}", "[]", R"({"FPID":"1"})", R"({"FPID":1,"hexImg":"FF"})",
                 R"({"FPID":"1","hexImg":"FF","faceLibType":5})"});
}

TEST_F(FaceTest, deletesFacesByLibrary) {
    script("PUT", kDelete, kOk);
    EXPECT_EQ(ask("PUT", kDelete,
                  R"({"FaceInfoDelCond":{"EmployeeNoList":[{"employeeNo":"1"},{"employeeNo":"2"}]}})"),
              kOk);
    EXPECT_THAT(sent(), ElementsAre(kReadLibraries, "PUT " + kDelete +
                                                        "?format=json&FDID=1%20%26&faceLibType=blackFD "
                                                        R"({"FPID":[{"value":"1"},{"value":"2"}]})"
                                                        "\n"));
    // A library that is gone from the device is gone here.
    libraries(R"([{"FDID":"3","faceLibType":"staticFD"}])");
    ask("PUT", kDelete, R"({"FaceInfoDelCond":{"EmployeeNoList":[]}})");
    EXPECT_THAT(sent().back(), EndsWith("FDID=&faceLibType=blackFD {\"FPID\":[]}\n"));
    refusesLate("PUT", kDelete,
                {"{}", R"({"FaceInfoDelCond":{}})", R"({"FaceInfoDelCond":{"EmployeeNoList":[{}]}})",
                 R"({"FaceInfoDelCond":{"EmployeeNoList":[],"faceLibType":"x"}})"});
}

TEST_F(FaceTest, countsAllLibraries) {
    judges("GET", kCount, "",
           {{R"({"FDRecordDataInfo":[{"recordDataNumber":3},{"recordDataNumber":5}]})",
             "{\"FaceInfoCount\":{\"faceNumber\":8}}\n"},
            {R"({"FDRecordDataInfo":[]})", "{\"FaceInfoCount\":{\"faceNumber\":0}}\n"},
            {R"({"FDRecordDataInfo":[{"recordDataNumber":"3"}]})",
             R"({"FDRecordDataInfo":[{"recordDataNumber":"3"}]})"},
            {"", kBadParameter}});
}

TEST_F(FaceTest, searchesFacesByPerson) {
    const std::string condition =
        R"({"FaceInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":5)";
    judges(
        "POST", kSearch, condition + R"(,"employeeNo":"7"}})",
        {{R"({"statusCode":1,"responseStatusStrg":"OK","numOfMatches":2,"totalMatches":4,"MatchList":[{"FPID":"7"},{}]})",
          R"({"FaceInfoSearch":{"FaceInfo":[{"employeeNo":"7"},{"employeeNo":null}],"numOfMatches":2,)"
          R"("responseStatusStrg":"OK","searchID":"s","totalMatches":4}})"
          "\n"},
         {R"({"MatchList":null})", "{\"FaceInfoSearch\":{\"FaceInfo\":[],\"searchID\":\"s\"}}\n"},
         {R"({"statusCode":4})", R"({"statusCode":4})"},
         {"", kBadJsonContent}});
    EXPECT_THAT(
        sent(),
        ElementsAre(
            kReadLibraries,
            "POST " + kSearch +
                "?format=json "
                R"({"FDID":"1 &","FPID":"7","faceLibType":"blackFD","maxResults":5,"searchResultPosition":0})"
                "\n"));
    refusesLate("POST", kSearch,
                {"{}", condition + R"(,"employeeNo":7}})", condition + R"(,"faceLibType":"x"}})",
                 R"({"FaceInfoSearchCond":{"searchID":"s","maxResults":5}})"});
}

TEST_F(AccessTest, downloadsFingerprintsWithTheirDefaults) {
    script("POST", kDownload, kOk);
    const auto cfg = [](const std::string& more) {
        return R"({"FingerPrintCfg":{"employeeNo":"1","fingerData":"QQ==","fingerPrintID":1)" + more + "}}";
    };
    EXPECT_EQ(ask("POST", kDownload, cfg("")), kOk);
    EXPECT_THAT(
        sent(),
        ElementsAre("POST " + kDownload +
                    "?format=json "
                    R"({"FingerPrintCfg":{"employeeNo":"1","enableCardReader":[1],"fingerData":"QQ==",)"
                    R"("fingerPrintID":1,"fingerType":"normalFP"}})"
                    "\n"));
    EXPECT_EQ(
        ask("POST", kDownload, cfg(R"(,"enableCardReader":[1,"2"],"fingerType":"superFP","leaderFP":[]})")),
        kOk);
    EXPECT_THAT(sent().back(), HasSubstr(R"("enableCardReader":[1,"2"])"));
    refuses("POST", kDownload,
            {"{}", R"({"FingerPrintCfg":[]})", R"({"FingerPrintCfg":{"employeeNo":"1","fingerPrintID":1}})",
             cfg(R"(,"enableCardReader":1)"), cfg(R"(,"fingerType":"NormalFP")"), cfg(R"(,"leaderFP":{})"),
             R"({"FingerPrintCfg":{"employeeNo":"1","fingerData":"","fingerPrintID":-1}})"});
}

TEST_F(AccessTest, modifiesReadsBackAndDeletesFingerprints) {
    relays("POST", kModify,
           R"({"FingerPrintModify": {"employeeNo":"1","cardReaderNo":1,"fingerPrintID":2}})");
    refuses(
        "POST", kModify,
        {"{}", R"({"FingerPrintModify":{"employeeNo":"1","cardReaderNo":1}})",
         R"({"FingerPrintModify":{"employeeNo":"1","cardReaderNo":"1","fingerPrintID":2}})",
         R"({"FingerPrintModify":{"employeeNo":"1","cardReaderNo":1,"fingerPrintID":2,"fingerType":"x"}})",
         R"({"FingerPrintModify":{"employeeNo":"1","cardReaderNo":1,"fingerPrintID":2,"leaderFP":1}})"});

    const std::string condition = R"({"FingerPrintCond":{"searchID":"s", "employeeNo":"1"}})";
    judges("POST", kReadBack, condition,
           {{"{\"FingerPrintInfo\": {\"status\":\"NONE\"},\n\"statusCode\":6}",
             "{\"FingerPrintInfo\":{\"status\":\"NONE\"},\"statusCode\":6}\n"},
            {kOk, kOk},
            {R"({"statusCode":4})", R"({"statusCode":4})"},
            {"", kBadJsonContent}});
    EXPECT_THAT(sent(), ElementsAre("POST " + kReadBack + "?format=json " + condition));
    refuses("POST", kReadBack,
            {"{}", R"({"FingerPrintCond":{"searchID":"s"}})",
             R"({"FingerPrintCond":{"searchID":"s","employeeNo":"1","cardReaderNo":"1"}})"});

    script("PUT", kDeletePrint, kOk);
    EXPECT_EQ(ask("PUT", kDeletePrint, R"({"FingerPrintDelete":{"x":1}})"), kOk);
    EXPECT_THAT(sent(),
                ElementsAre(EndsWith(" {\"FingerPrintDelete\":{\"mode\":\"byEmployeeNo\",\"x\":1}}\n")));
    refuses("PUT", kDeletePrint,
            {"{}", R"({"FingerPrintDelete":{"mode":"all"}})", R"({"FingerPrintDelete":{"mode":1}})"});

    relays("PUT", "/VELTA/AccessControl/CardReaderCfg/2", R"({"CardReaderCfg": {"enable":true,"x":1}})");
    refuses("PUT", "/VELTA/AccessControl/CardReaderCfg/2", {"{}", R"({"CardReaderCfg":{"enable":1}})"});
}

TEST_F(AccessTest, capturesFingers) {
    const auto finger = [](const std::string& number) {
        return R"({"CaptureFingerPrintCond":{"fingerNo":)" + number + "}}";
    };
    judges("POST", kCapture, finger("10"),
           {{"<CaptureFingerPrint><fingerPrintQuality>80</fingerPrintQuality><fingerData>QUI=</fingerData>"
             "<fingerNo>1</fingerNo></CaptureFingerPrint>",
             "{\"CaptureFingerPrint\":{\"fingerData\":\"QUI=\",\"fingerNo\":1,\"fingerPrintQuality\":80}}\n"},
            {"<CaptureFingerPrint/>", "{\"CaptureFingerPrint\":{}}\n"},
            {"<ResponseStatus><statusCode>6</statusCode><errorCode>1610637369</errorCode></ResponseStatus>",
             "0x60006039"},
            {"<ResponseStatus><statusCode>2</statusCode></ResponseStatus>", "0x4000111D", 503},
            {"<Other><statusCode>4</statusCode></Other>", kBadParameter},
            {"", kBadParameter}});
    EXPECT_THAT(sent(), ElementsAre("POST " + kCapture +
                                    " <?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
                                    "<CaptureFingerPrintCond version=\"2.0\" xmlns=\"urn:velta:schema\">"
                                    "<fingerNo>10</fingerNo></CaptureFingerPrintCond>"));
    refuses("POST", kCapture,
            {finger("0"), finger("11"), finger("-1"), finger("\"1\""), " " + finger("1"), "{}"});
}

TEST_F(AccessTest, tellsTheLimitsOfACapture) {
    judges(
        "GET", kCapture + "/capabilities", "",
        {{R"(<CaptureFingerPrint><CaptureFingerPrintCond><fingerNo min="1" max="10"><min>5</min></fingerNo>)"
          "</CaptureFingerPrintCond><fingerData><min>1</min><max>768</max></fingerData>"
          R"(<fingerPrintQuality max="100"/></CaptureFingerPrint>)",
          R"({"CaptureFingerPrint":{"CaptureFingerPrintCond":{"fingerNo":{"max":10,"min":1}},)"
          R"("fingerData":{"max":768,"min":1},"fingerNo":{"max":null,"min":null},)"
          R"("fingerPrintQuality":{"max":100,"min":null}}})"
          "\n"},
         {"<ResponseStatus><statusCode>4</statusCode></ResponseStatus>", "0x40000001"},
         {"<broken", kBadParameter}});
    EXPECT_THAT(sent(), ElementsAre("GET " + kCapture + "/capabilities "));
}

TEST_F(AccessTest, logsNeitherPasswordsNorPeople) {
    using SetLevel = void (*)(int level);
    using Sink = void (*)(int level, const char* module, const char* line, void* user);
    using SetSink = void (*)(Sink sink, void* user);
    const auto setLevel = reinterpret_cast<SetLevel>(library.symbol("xlog_set_level"));
    const auto setSink = reinterpret_cast<SetSink>(library.symbol("xlog_set_sink"));
    std::string log;
    setSink([](int, const char*, const char* line, void* user) { *static_cast<std::string*>(user) += line; },
            &log);
    library.setConfig("SetEventSub", "1");
    EXPECT_EQ(log, "");  // below the threshold
    setLevel(0);

    session = std::make_unique<Session>(library);
    ASSERT_EQ(session->connectTo(device.port(), "admin", "S3cret-password"), 0U);
    script("GET", kLibraries, R"({"statusCode":1})");
    for (const int httpStatus : {200, 500}) {
        script("POST", kFace, R"({"statusCode":4})", httpStatus);
        script("POST", kDownload, R"({"statusCode":4})", httpStatus);
        ask("POST", kFace, R"({"FaceInfo":{"employeeNo":"1","hexImg":"464143454441"}})");
        ask("POST", kDownload,
            R"({"FingerPrintCfg":{"employeeNo":"1","fingerPrintID":1,"fingerData":"VEVNUA=="}})");
        ask("POST", kDownload, R"({"FingerPrintCfg":{"fingerData":"VEVNUA=="}})");
    }
    veltasim::Device strict({.password = "S3cret-password"});  // wants them
    strict.start();
    ASSERT_EQ(session->connectTo(strict.port(), "admin", "S3cret-password"), 0U);
    EXPECT_THAT(session->request("GET", "/VELTA/System/deviceInfo?format=json"), HasSubstr("VA204"));
    session->request("GET", "/VELTA/Nothing?devIndex=1");
    session->destroy();
    setLevel(5);
    setSink(nullptr, nullptr);
    EXPECT_THAT(log, testing::AllOf(HasSubstr(kDownload), HasSubstr("/VELTA/Nothing")));
    for (const char* secret : {"S3cret", "464143454441", "FACEDA", "VEVNUA"})
        EXPECT_THAT(log, testing::Not(HasSubstr(secret)));
}

}  // namespace
