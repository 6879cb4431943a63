#include "device/AlertStreamParser.h"

#include <gmock/gmock.h>

#include <random>

#include "gateway/JsonText.h"

using testing::ElementsAre;
using testing::IsEmpty;
using velta::AlertStreamParser;

namespace {

using Messages = std::vector<std::string>;
constexpr size_t npos = std::string::npos;

/* What the parser is to hand on, found by searching the whole buffer after every chunk. */
class PlainParser {
 public:
    Messages messages;

    void feed(const std::string& chunk) {
        buffer_ += chunk;
        setBoundary();
        std::string json;
        int pictures = 0;
        if (isJsonContent(json, pictures)) {
            if (pictures == 0 || isJpegComplete()) take(json);
        } else if (isJpegComplete()) {
            std::string message = buffer_;
            const size_t at = message.find(boundary_);
            if (at != npos) message.erase(0, at + boundary_.size());
            const size_t end = message.find("\r\n\r\n");
            if (end != npos) message.erase(0, end + 4);
            take(message);
        }
    }

 private:
    void setBoundary() {
        const size_t at = buffer_.find("boundary=");
        if (!boundary_.empty() || at == npos) return;
        const std::string rest = buffer_.substr(at + 9);
        if (rest.find("\r\n") != npos) boundary_ = "--" + rest.substr(0, rest.size() - 2);
    }

    bool isJsonContent(std::string& json, int& pictures) {
        const size_t mark = buffer_.find("application/json");
        if (mark == npos || boundary_.empty() || buffer_.find(boundary_) == npos) return false;
        if (buffer_.find("\r\n\r\n") == npos) return false;
        const size_t own = buffer_.find("\r\n\r\n", mark + 16);
        json = buffer_.substr((own != npos ? own : buffer_.find("\r\n\r\n")) + 4);
        Json::Value value;
        const Json::Value& root = value;
        if (!velta::parseJson(json, value) || !root.isObject()) return false;
        if (root.isMember("AccessControllerEvent") &&
            root["AccessControllerEvent"]["picturesNumber"].isInt()) {
            pictures = root["AccessControllerEvent"]["picturesNumber"].asInt();
        }
        if (pictures == 0) json = velta::writeJson(root) + "\r\n";
        return true;
    }

    bool isJpegComplete() {
        size_t mark = buffer_.rfind("Content-Type: image/jpeg");
        if (mark == npos) mark = buffer_.rfind("Content-Type: image/pjpeg");
        if (mark == npos) return false;
        std::string jpeg = buffer_.substr(mark);
        const size_t length = jpeg.find("Content-Length: ");
        const size_t end = jpeg.find("\r\n\r\n");
        if (length == npos || end == npos) return false;
        const size_t announced = std::strtoul(jpeg.c_str() + length + 16, nullptr, 10);
        return jpeg.size() - end - 4 >= announced;
    }

    void take(const std::string& message) {
        messages.push_back(message);
        buffer_.clear();
    }

    std::string boundary_;
    std::string buffer_;
};

const char* const kHeaderLines[] = {
    "HTTP/1.1 200 OK\r\n",
    "Content-Type: multipart/mixed; boundary=velta_events\r\n",
    "\r\n",
};

std::string part(const std::string& headers, const std::string& body) {
    return "--velta_events\r\n" + headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           body + "\r\n";
}
std::string jsonPart(const std::string& json) {
    return part("Content-Type: application/json; charset=\"UTF-8\"\r\n", json);
}
std::string jpegPart(const std::string& jpeg, const char* type = "jpeg") {
    return part("Content-Disposition: form-data; name=\"Picture\"\r\nContent-Type: image/" +
                    std::string(type) + "\r\n",
                jpeg);
}
const std::string kAlarm = R"({"ipAddress":"10.0.0.5"})";
const std::string kPictureEvent = R"({"AccessControllerEvent":{"picturesNumber":1},"ipAddress":"10.0.0.5"})";

class AlertStreamParserTest : public testing::Test {
 protected:
    Messages messages;
    AlertStreamParser parser{[this](std::string message) { messages.push_back(std::move(message)); }};

    void connect() {
        for (const char* line : kHeaderLines)
            parser.feed(line);
    }
};

class RandomStream {
 public:
    explicit RandomStream(unsigned seed) : random_(seed) {}

    std::vector<std::string> chunks() {
        std::vector<std::string> chunks(std::begin(kHeaderLines), std::end(kHeaderLines));
        std::string body;
        for (unsigned parts = 1 + below(8); parts > 0; --parts)
            body += randomPart();
        // From a byte at a time to everything at once.
        const unsigned longest = 1U << below(13);
        for (size_t at = 0; at < body.size();) {
            const size_t length = 1 + below(longest);
            chunks.push_back(body.substr(at, length));
            at += length;
        }
        return chunks;
    }

 private:
    unsigned below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random_); }

    std::string bytes(size_t length) {
        std::string bytes(length, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(below(256));
        return bytes;
    }

    std::string randomPart() {
        const std::string number = std::to_string(below(1000));
        switch (below(8)) {
            case 0:
                return jsonPart(R"({ "serial": )" + number +
                                R"(, "text": "a } \" /* [", "list": [1, {"b": null}] })");
            case 1:
                return jsonPart("// note\r\n {\"AccessControllerEvent\":{\"serialNo\":" + number + "}} ");
            case 2:
                return part("Content-Type: application/xml\r\n", "<Alert><id>" + number + "</id></Alert>");
            case 3:
                return part("Content-Type: text/plain\r\n", "{\"serial\": " + number + "}");
            case 4:
                return jpegPart(bytes(below(300)));
            case 5:
                return jsonPart(kPictureEvent) + jpegPart(bytes(below(1200)), "pjpeg");
            case 6:
                return jsonPart(kPictureEvent);
            default:
                return jsonPart(kPictureEvent) + jpegPart(bytes(below(1200)));
        }
    }

    std::mt19937 random_;
};

TEST_F(AlertStreamParserTest, handsOnWhatThePlainAlgorithmHandsOn) {
    size_t handedOn = 0;
    for (unsigned seed = 0; seed < 300; ++seed) {
        messages.clear();
        PlainParser plain;
        AlertStreamParser fast{[this](std::string message) { messages.push_back(std::move(message)); }};
        for (const std::string& chunk : RandomStream(seed).chunks()) {
            plain.feed(chunk);
            fast.feed(chunk);
            ASSERT_EQ(messages, plain.messages) << "seed " << seed;
        }
        handedOn += messages.size();
    }
    EXPECT_GT(handedOn, 400U);
}

TEST_F(AlertStreamParserTest, boundaryStaysWhenTheStreamIsOpenedAgain) {
    parser.feed(jsonPart(kAlarm));  // before the boundary is known it is no part
    EXPECT_THAT(messages, IsEmpty());
    parser.clear();
    connect();
    parser.clear();
    parser.feed(jsonPart(kAlarm));
    EXPECT_EQ(messages.size(), 1U);
}

TEST_F(AlertStreamParserTest, unreadablePartIsDroppedWhenItIsOver) {
    const std::string deep = std::string(5000, '[') + std::string(5000, ']');
    for (const std::string& bad :
         {std::string("{\"a\": oops}"), std::string("{\"a\": 1"), std::string("[1]"), std::string("HTTP"),
          std::string("{\"a\":" + deep + "}"), std::string("\"open")}) {
        for (const size_t step : {size_t{1}, size_t{100000}}) {
            messages.clear();
            parser.clear();
            connect();
            const std::string stream =
                jsonPart(bad) + jsonPart(kPictureEvent) + jpegPart("jpeg") + jsonPart(kAlarm);
            for (size_t at = 0; at < stream.size(); at += step)
                parser.feed(stream.substr(at, step));
            ASSERT_FALSE(messages.empty()) << bad.substr(0, 20);
            EXPECT_THAT(messages[0], testing::StartsWith(kPictureEvent)) << bad.substr(0, 20);
        }
    }
}

TEST_F(AlertStreamParserTest, unreadablePartWaitsForItsAnnouncedLength) {
    connect();
    const std::string inner = jsonPart(R"({"inner":1})");
    parser.feed(jsonPart("{oops " + inner) + jsonPart(kAlarm));
    EXPECT_THAT(messages, ElementsAre(kAlarm + "\n\r\n"));
}

TEST_F(AlertStreamParserTest, endlessPartIsBounded) {
    connect();
    parser.feed("--velta_events\r\nContent-Type: application/json\r\n\r\n{\"a\":\"");
    const std::string chunk(1 << 20, 'x');
    size_t most = 0;
    for (int i = 0; i < 70; ++i) {
        parser.feed(chunk);
        most = std::max(most, parser.buffered());
    }
    EXPECT_LE(most, AlertStreamParser::kMaxBuffer);
    EXPECT_LT(parser.buffered(), size_t{10} << 20);
    parser.feed("\r\n" + jsonPart(kAlarm));
    EXPECT_THAT(messages, ElementsAre(kAlarm + "\n\r\n"));
}

}  // namespace
