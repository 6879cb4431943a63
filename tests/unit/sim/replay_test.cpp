#include <gtest/gtest.h>

#include <veltasim/device.h>

#include "client.h"

namespace {

using veltasim::Recording;

// As other programs write archives: with members that nobody here knows, and without parts.
std::string entry(const std::string& method, const std::string& url, int status, const std::string& content,
                  const std::string& body = "") {
    return R"({"request":{"method":")" + method + R"(","url":")" + url + R"(","postData":{"text":")" + body +
           R"("},"headers":[]},"response":{"status":)" + std::to_string(status) +
           R"(,"headers":[],"content":{"mimeType":)" + content + R"(}},"_own":1})";
}

std::string archive(std::initializer_list<std::string> entries) {
    std::string list;
    for (const std::string& one : entries)
        list += (list.empty() ? "" : ",\n") + one;
    return "{\"log\":{\"entries\":[" + list + "]}}";
}

veltasim::Options replaying(const std::string& har) {
    veltasim::Options options;
    options.recording = std::make_shared<const Recording>(Recording::fromHar(har));
    options.replaySpeed = 1000;
    return options;
}

struct Replay : velta_test::DeviceTest {
    Replay()
        : DeviceTest(replaying(archive({
              entry("GET", "http://10.0.0.1/VELTA/a?n=1", 401, R"("text/plain","text":"refused")"),
              entry("GET", "http://10.0.0.1/VELTA/a?n=1", 200, R"("text/plain","text":"first")"),
              entry("GET", "http://10.0.0.2/VELTA/a?n=1", 200, R"("text/plain","text":"of another device")"),
              entry("GET", "http://10.0.0.1:80/VELTA/a?n=1", 503,
                    R"("text/plain","text":"c2Vjb25k","encoding":"base64")"),
              entry("POST", "http://10.0.0.1/VELTA/b", 200, R"("text/plain","text":"b1")",
                    R"({\"searchID\":\"x\",\"n\":1,\"password\":\"[left out]\"})"),
              entry("POST", "http://10.0.0.1/VELTA/b", 200, R"("image/jpeg","text":"[left out: 12 bytes]")",
                    R"({\"searchID\":\"y\",\"n\":2})"),
              entry("PUT", "http://10.0.0.1/VELTA/c", 0, R"("x-unknown")"),
              entry("GET", "http://10.0.0.1/VELTA/Event/notification/alertStream", 200,
                    R"("multipart/mixed; boundary=q","text":"--q\r\nContent-Length: 40\r\n\r\n)"
                    R"({\"ipAddress\":\"10.0.0.1\", \"portNo\": 80}\r\n)"
                    R"(--q\r\nContent-Length: 5\r\n\r\n<ipAddress>10.9.9.9</ipAddress>\r\n")"),
          }))) {}
};

}  // namespace

TEST_F(Replay, Request_asRecorded) {
    const auto get = [this](const std::string& target) {
        const velta_test::Answer answer = client.get(target);
        return std::to_string(answer.status) + " " + answer.body;
    };
    EXPECT_EQ(get("/VELTA/a?n=1"), "200 first");
    EXPECT_EQ(get("/VELTA/a?n=1"), "503 second");
    EXPECT_EQ(get("/VELTA/a?n=1"), "503 second");
    EXPECT_EQ(get("/VELTA/a?n=2").substr(0, 4), "404 ");
    const auto post = [this](const std::string& body) { return client.send("POST", "/VELTA/b", body).body; };
    const std::string picture = post(R"({"n":2,"searchID":"z"})");
    EXPECT_EQ(picture.size(), 12U);
    EXPECT_TRUE(picture.starts_with("\xFF\xD8")) << "a picture";
    EXPECT_EQ(post(R"({"n":1,"password":"4711","searchID":""})"), "b1");
    EXPECT_NE(client.put("/VELTA/c", "").result, CURLE_OK) << "as then, the device does not answer";
}

TEST_F(Replay, Stream_namesTheNewAddress) {
    velta_test::Subscriber subscriber(device);
    const std::string events = subscriber.waitFor("10.9.9.9");
    const std::string port = std::to_string(device.port());
    EXPECT_NE(events.find("{\"ipAddress\":\"127.0.0.1\", \"portNo\": " + port + "}"), std::string::npos)
        << events;
    EXPECT_NE(events.find("Content-Length: " + std::to_string(39 + port.size())), std::string::npos)
        << events;
}

TEST(Recording, FromHar_saysWhatIsWrong) {
    const struct {
        std::string text;
        std::string reason;
    } cases[] = {
        {"{\n\"log\": {,", "Line 2"},
        {"[1]", "archive.log.entries: a list"},
        {archive({}), "no entries"},
        {archive({"{}"}), "entry 1.request.url: a text"},
        {archive({entry("GET", "http://", 200, "\"\"")}), "entry 1.request.url: the URL"},
        {archive({entry("GET", "http://h/", 200, R"("","encoding":"base64","text":"?")")}), "base64"},
    };
    for (const auto& one : cases) {
        try {
            Recording::fromHar(one.text);
            ADD_FAILURE() << one.text;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find(one.reason), std::string::npos) << error.what();
        }
    }
}
