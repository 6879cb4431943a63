// Persons, cards and the log of access events.
#include <thread>

#include "access.h"

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string kRecord = "/VELTA/AccessControl/UserInfo/Record";
const std::string kModify = "/VELTA/AccessControl/UserInfo/Modify";
const std::string kSearch = "/VELTA/AccessControl/UserInfo/Search";
const std::string kDelete = "/VELTA/AccessControl/UserInfoDetail/Delete";
const std::string kCardRecord = "/VELTA/AccessControl/CardInfo/Record";
const std::string kCardModify = "/VELTA/AccessControl/CardInfo/Modify";
const std::string kCardDelete = "/VELTA/AccessControl/CardInfo/Delete";
const std::string kCardSearch = "/VELTA/AccessControl/CardInfo/Search";
const std::string kEvents = "/VELTA/AccessControl/AcsEvent";

/* What all JSON orders have in common, whoever gives them. */
const std::string kNoSupport = R"({"statusCode":4,"statusString":"Invalid Operation"})";

std::string person(const std::string& employeeNo, const std::string& more = "") {
    return R"({"employeeNo":")" + employeeNo +
           R"(","Valid":{"beginTime":"2026-01-01T00:00:00","endTime":"2036-01-01T00:00:00"})" + more + "}";
}

std::string batch(int count) {
    std::string list;
    for (int number = 1; number <= count; ++number)
        list += (number > 1 ? "," : "") + person(std::to_string(number));
    return R"({"UserInfo":[)" + list + "]}";
}

Json::Value outList(const std::string& answer) {
    return parsed(answer)["UserInfoOutList"]["UserInfoOut"];
}

TEST_F(AccessTest, tellsOfEachPersonOfABatchApart) {
    script("POST", kRecord, kOk);
    ask("POST", kRecord, R"({"UserInfo":[)" + person("1", R"(,"own":[1, "é"])") + "]}");
    EXPECT_THAT(sent(), ElementsAre(HasSubstr(R"("own":[1,"\u00e9"])")));
    const Json::Value all = outList(ask("POST", kRecord, batch(30)));
    ASSERT_EQ(all.size(), 30U);
    EXPECT_EQ(all[29]["employeeNo"].asString(), "30");
    EXPECT_EQ(sent().size(), 30U);

    const auto resultOf = [&](const std::string& answer, int httpStatus = 200) {
        script("POST", kRecord, answer, httpStatus);
        return outList(ask("POST", kRecord, batch(1)))[0]["errorCode"].asUInt();
    };
    EXPECT_EQ(resultOf(R"({"statusCode":6,"errorCode":1610637344})", 400), 0x60006020U);
    EXPECT_EQ(resultOf(R"({"statusCode":4})"), 0x40000001U);
    EXPECT_EQ(resultOf(R"({"statusCode":1})", 500), 1U);  // the answer counts, whatever the exchange was
    EXPECT_EQ(resultOf(R"({"statusCode":2,"errorCode":536899999})"), 0x4000111DU);  // not catalogued
    // The session has not been checked yet, so it is not online.
    EXPECT_EQ(resultOf("<ResponseStatus/>"), 0x30008007U);
    EXPECT_EQ(resultOf(""), 0x30008007U);
    // One exchange that fails takes nothing from the one before.
    script("POST", kRecord, kOk);
    device.setFault({.kind = veltasim::FaultKind::Drop, .path = kRecord, .count = 1});
    const Json::Value results = outList(ask("POST", kRecord, batch(3)));
    EXPECT_EQ(results[0]["errorCode"].asUInt(), 0x30008007U);
    EXPECT_EQ(results[1]["errorCode"].asUInt(), 1U);
}

TEST_F(AccessTest, refusesPersonsThatBreakTheRules) {
    refuses("POST", kRecord,
            {"", "no json", "[]", "{}", R"({"UserInfo":null})", R"({"UserInfo":[]})", R"({"UserInfo":"x"})",
             batch(31), R"({"UserInfo":[1]})", R"({"UserInfo":[)" + person("1") + R"(,{"employeeNo":"2"}]})",
             R"({"UserInfo":[{"employeeNo":1,"Valid":{"beginTime":"1","endTime":"2"}}]})",
             R"({"UserInfo":[{"employeeNo":"1","Valid":{"beginTime":"1"}}]})",
             R"({"UserInfo":[{"employeeNo":"1","Valid":{"beginTime":"1","endTime":2}}]})",
             R"({"UserInfo":[)" + person("1") + "," + person("2", R"(,"userType":"Normal")") + "]}",
             R"({"UserInfo":[)" + person("1", R"(,"name":5)") + "]}",
             R"({"UserInfo":[{"employeeNo":"1","Valid":{"beginTime":"1","endTime":"2","enable":"true"}}]})"});
    // One person goes unchecked, but not to a device that is known to be away.
    EXPECT_EQ(ask("POST", kRecord, R"({"UserInfo":{"userType":"x"}})"), "0x30008007");
    EXPECT_THAT(sent(), IsEmpty());

    refuses(
        "PUT", kModify,
        {"{}", R"({"UserInfo":[]})", R"({"UserInfo":{}})", R"({"UserInfo":{"employeeNo":1}})",
         R"({"UserInfo":{"employeeNo":"1","userType":"guest"}})",
         R"({"UserInfo":{"employeeNo":"1","Valid":{"beginTime":1}}})",
         R"({"UserInfo":{"employeeNo":"1","Valid":[]}})", R"({"UserInfo":{"employeeNo":"1","name":null}})"});
    refuses("PUT", kDelete,
            {"{}", R"({"UserInfoDetail":{}})", R"({"UserInfoDetail":{"mode":"some"}})",
             R"({"UserInfoDetail":{"mode":"byEmployeeNo"}})",
             R"({"UserInfoDetail":{"mode":"byEmployeeNo","EmployeeNoList":[]}})",
             R"({"UserInfoDetail":{"mode":"byEmployeeNo","EmployeeNoList":[{"employeeNo":"1"},{}]}})"});
    for (const auto& [root, path] :
         {std::pair{"UserInfoSearchCond", kSearch}, {"CardInfoSearchCond", kCardSearch}}) {
        const auto search = [name = std::string(root)](const std::string& members) {
            return R"({")" + name + R"(":)" + members + "}";
        };
        refuses(
            "POST", path,
            {"{}", search("[]"), search(R"({"searchID":"s","searchResultPosition":0})"),
             search(R"({"searchID":1,"searchResultPosition":0,"maxResults":9})"),
             search(R"({"searchID":"s","searchResultPosition":-1,"maxResults":9})"),
             search(R"({"searchID":"s","searchResultPosition":"0","maxResults":9})"),
             search(R"({"searchID":"s","searchResultPosition":0,"maxResults":4294967296})"),
             search(R"({"searchID":"s","searchResultPosition":0,"maxResults":1.5})"),
             search(R"({"searchID":"s","searchResultPosition":0,"maxResults":9,"EmployeeNoList":{}})"),
             search(R"({"searchID":"s","searchResultPosition":0,"maxResults":9,"EmployeeNoList":["1"]})")});
    }
}

TEST_F(AccessTest, sendsPersonsAsTheHostWroteThem) {
    const std::string odd =
        "{ \"UserInfo\" :\t{\"z\":1e3,\"employeeNo\":\"J\xc3\xb6rg\",\r\n"
        "\"big\":123456789012345678901234567890, \"Valid\":{}}}";
    relays("PUT", kModify, odd);
    relays("PUT", kDelete, R"({"UserInfoDetail":{"mode":"all","EmployeeNoList":5}})");
    relays("PUT", kDelete,
           R"({"UserInfoDetail":{"mode":"byEmployeeNo","EmployeeNoList":[{"employeeNo":"1"}]}})");
    judges("PUT", kModify, odd,
           {{kNoSupport, kNoSupport}, {"[1]", "[1]"}, {R"({"a":1})", R"({"a":1})"}, {"", kBadJsonContent}});
    script("PUT", kModify, kOk);
    device.setFault({.kind = veltasim::FaultKind::Drop, .path = kModify});
    EXPECT_EQ(ask("PUT", kModify, odd), "0x4000111D");
    EXPECT_EQ(sent().size(), 1U);
}

TEST_F(AccessTest, handsOnPagesOfPersons) {
    const std::string condition =
        R"({"UserInfoSearchCond":{"searchID":"s","searchResultPosition":0.0,"maxResults":3e1,"fuzzy":"A  b"}})";
    const std::string page =
        "{\"UserInfoSearch\" :{\"searchID\":\"s\",\"responseStatusStrg\":\"OK\","
        "\"numOfMatches\":0,\"totalMatches\":0}}";
    judges("POST", kSearch, condition,
           {{page, page},  // as the device wrote it
            {R"({"UserInfoSearch":{"searchID":"s","responseStatusStrg":"OK","numOfMatches":0}})",
             R"({"UserInfoSearch":{"searchID":"s","responseStatusStrg":"OK","numOfMatches":0}})"},
            {R"({"statusCode":1})", R"({"statusCode":1})"},
            {"", kBadJsonContent}});
    EXPECT_THAT(sent(), ElementsAre("POST " + kSearch + "?format=json " + condition));
}

TEST_F(AccessTest, addsAndModifiesCards) {
    script("POST", kCardRecord, kOk);
    EXPECT_EQ(ask("POST", kCardRecord, R"({"CardInfo":{"employeeNo":"1","cardNo":"007","x":null},"y":1})"),
              kOk);
    EXPECT_THAT(
        sent(),
        ElementsAre("POST " + kCardRecord +
                    "?format=json "
                    R"({"CardInfo":{"cardNo":"007","cardType":"normalCard","employeeNo":"1","x":null}})"
                    "\n"));
    const std::string card = R"({"CardInfo": {"employeeNo":"1","cardNo":"007"}})";
    relays("PUT", kCardModify, card);
    judges("PUT", kCardModify, card,
           {{R"({"statusCode":3,"errorCode":805306388})", "0x60006003", 403},
            {R"({"statusCode":3,"errorCode":805306388})", R"({"statusCode":3,"errorCode":805306388})"},
            {R"({"statusCode":3,"errorCode":805306369})", R"({"statusCode":3,"errorCode":805306369})", 403},
            {"no json", "no json", 500}});
    for (const auto& [method, path] : {std::pair{"POST", kCardRecord}, {"PUT", kCardModify}}) {
        refuses(method, path,
                {"{}", R"({"CardInfo":[]})", R"({"CardInfo":{"cardNo":"1"}})",
                 R"({"CardInfo":{"employeeNo":"1"}})", R"({"CardInfo":{"employeeNo":"1","cardNo":7}})",
                 R"({"CardInfo":{"employeeNo":"1","cardNo":"7","cardType":"card"}})",
                 R"({"CardInfo":{"employeeNo":"1","cardNo":"7","cardType":null}})"});
    }
}

TEST_F(AccessTest, deletesCardsByOneListOrNone) {
    relays("PUT", kCardDelete, R"({"CardInfoDelCond":{"EmployeeNoList":[]}})");
    relays("PUT", kCardDelete, R"({"CardInfoDelCond":{"CardNoList":[{"cardNo":"1"}]}})");
    relays("PUT", kCardDelete, R"({"CardInfoDelCond":{}})");
    refuses("PUT", kCardDelete,
            {R"({"CardInfoDelCond":[]})", R"({"CardInfoDelCond":{"EmployeeNoList":[],"CardNoList":[]}})",
             R"({"CardInfoDelCond":{"EmployeeNoList":{}}})",
             R"({"CardInfoDelCond":{"CardNoList":[{"cardNo":1}]}})"});
}

TEST_F(AccessTest, handsOnWhatHostsKnowOfCards) {
    const std::string condition =
        R"({"CardInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":9,"CardNoList":[]}})";
    const auto page = [](const std::string& cards) {
        return R"({"CardInfoSearch":{)" + cards +
               R"("numOfMatches":1,"responseStatusStrg":"OK","searchID":"s","totalMatches":1}})";
    };
    judges("POST", kCardSearch, condition,
           {{page(R"("CardInfo":[{"leader":1,"cardNo":"7","cardType":"superCard","employeeNo":"1"},{}],)"),
             page(R"("CardInfo":[{"cardNo":"7","cardType":"superCard","employeeNo":"1"},)"
                  R"({"cardNo":null,"cardType":null,"employeeNo":null}],)") +
                 "\n"},
            {page(""), page("") + "\n"},
            {page(R"("CardInfo":null,)"), page("") + "\n"},
            {page(R"("CardInfo":[],)"), page(R"("CardInfo":[],)") + "\n"},
            {R"({"statusCode":1})", R"({"statusCode":1})"},
            {R"({"CardInfoSearch":[]})", R"({"CardInfoSearch":[]})"}});
    refuses(
        "POST", kCardSearch,
        {R"({"CardInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":9,"CardNoList":[],)"
         R"("EmployeeNoList":[]}})"});
}

TEST_F(AccessTest, countsAsTheDeviceDoes) {
    const std::string path = "/VELTA/AccessControl/UserInfo/Count";
    judges("GET", path, "",
           {{"{\n \"UserInfoCount\": {\n  \"personNumber\": 3 }\n}",
             "{\"UserInfoCount\":{\"personNumber\":3}}\n"},
            {R"({"statusCode":1,"n":1.5})", "{\"n\":1.5,\"statusCode\":1}\n"},
            {R"({"statusCode":"x"})", "{\"statusCode\":\"x\"}\n"},
            {R"({"statusCode":4,"errorCode":1073741825})", R"({"statusCode":4,"errorCode":1073741825})"},
            {" {}", " {}"},
            {"", kBadParameter}});
    EXPECT_THAT(sent(), ElementsAre("GET " + path + "?format=json "));
}

TEST_F(AccessTest, searchesTheLogInTheHostsWords) {
    const std::string page = R"("numOfMatches":1,"responseStatusStrg":"OK","searchID":"s","totalMatches":1)";
    const auto search = [&](const std::string& more) {
        return R"({"AcsEventSearchDescription":{"searchID":"s","searchResultPosition":0,"maxResults":9)" +
               more + "}}";
    };
    judges("POST", kEvents, search(""),
           {{R"({"AcsEvent":{"InfoList":[{"serialNo":2},1],)" + page + "}}",
             R"({"AcsEventSearchResult":{"MatchList":[{"serialNo":2},1],)" + page + "}}\n"},
            {R"({"AcsEvent":{"InfoList":[],)" + page + "}}",
             R"({"AcsEventSearchResult":{"MatchList":[],)" + page + "}}\n"},
            {R"({"AcsEvent":{)" + page + "}}", R"({"AcsEventSearchResult":{)" + page + "}}\n"},
            {R"({"AcsEvent":{"searchID":"s"}})", R"({"AcsEvent":{"searchID":"s"}})"},
            {R"({"statusCode":1,"statusString":"OK"})", R"({"statusCode":1,"statusString":"OK"})"},
            {"", kBadJsonContent}});
    EXPECT_THAT(
        sent(),
        ElementsAre(
            "POST " + kEvents +
            "?format=json "
            R"({"AcsEventCond":{"major":0,"maxResults":9,"minor":0,"searchID":"s","searchResultPosition":0}})"
            "\n"));
    ask("POST", kEvents,
        search(R"(,"AcsEventFilter":{"major":5,"startTime":"t","endTime":"u","cardNo":"7",)"
               R"("name":"N","picEnable":true,"employeeNo":"1001","other":1})"));
    EXPECT_THAT(sent(),
                ElementsAre(HasSubstr(
                    R"({"AcsEventCond":{"cardNo":"7","employeeNoString":"1001","endTime":"u","major":5,)"
                    R"("maxResults":9,"minor":0,"name":"N","picEnable":true,"searchID":"s",)"
                    R"("searchResultPosition":0,"startTime":"t"}})")));
    std::vector<std::string> bad = {
        "{}", "[]", R"({"AcsEventSearchDescription":{"searchID":"s"}})",
        R"({"AcsEventCond":{"searchID":"s","searchResultPosition":0,"maxResults":-1}})"};
    for (const char* filter :
         {"[]", R"({"major":"5"})", R"({"minor":-1})", R"({"startTime":1})", R"({"endTime":1})",
          R"({"cardNo":7})", R"({"name":null})", R"({"picEnable":1})", R"({"employeeNo":1001})"})
        bad.push_back(search(R"(,"AcsEventFilter":)" + std::string(filter)));
    refuses("POST", kEvents, bad);
}

TEST_F(AccessTest, searchesTheLogInTheDevicesWords) {
    const std::string answer =
        R"({"AcsEvent":{"numOfMatches":0,"responseStatusStrg":"NO MATCH","searchID":"s","totalMatches":0},"x":1})";
    script("POST", kEvents, answer);
    EXPECT_EQ(
        ask("POST", kEvents,
            R"({"own":1,"AcsEventCond":{"searchID":"s","searchResultPosition":0,"maxResults":9,"minor":9}})"),
        answer + "\n");
    EXPECT_THAT(
        sent(),
        ElementsAre(HasSubstr(
            R"({"AcsEventCond":{"major":0,"maxResults":9,"minor":9,"searchID":"s","searchResultPosition":0},"own":1})")));
}

TEST_F(AccessTest, writesOneAfterTheOther) {
    const auto arrived = [](const std::string& path) {
        return [path](const veltasim::RequestRecord& request) { return request.path() == path; };
    };
    script("POST", kCardRecord, kOk);
    script("PUT", kCardModify, kOk);
    script("POST", kSearch, kOk);
    device.setFault({.kind = veltasim::FaultKind::HangBefore, .path = kCardRecord});
    const std::string card = R"({"CardInfo":{"employeeNo":"1","cardNo":"7"}})";
    const auto write = [&](const char* method, const std::string& path) {
        return std::thread(
            [this, method, path, &card] { session->request(method, path + "?format=json", card); });
    };
    std::thread slow = write("POST", kCardRecord);
    EXPECT_TRUE(device.waitForRequest(arrived(kCardRecord), kDeadline));
    std::thread next = write("PUT", kCardModify);
    // Reading goes on meanwhile, and what a host has to say about events.
    for (int times = 0; times < 20; ++times)
        session->request(
            "POST", kSearch + "?format=json",
            R"({"UserInfoSearchCond":{"searchID":"s","searchResultPosition":0,"maxResults":1}})");
    EXPECT_EQ(session->cancel(), VELTA_E_OFFLINE);
    EXPECT_FALSE(device.waitForRequest(arrived(kCardModify), 0ms));
    device.clearFaults();
    slow.join();
    next.join();
    EXPECT_TRUE(device.waitForRequest(arrived(kCardModify), 0ms));
}

}  // namespace
