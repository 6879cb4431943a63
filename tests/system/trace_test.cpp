// A device at work with a trace, and the same again with a device that plays the trace back: the programs as they are.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "../wait.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kPin = "864209";

// A program whose output, errors too, comes through a pipe.
class Program {
 public:
    explicit Program(const std::string& command)
        : output_(popen(("echo $$; exec " + command + " 2>&1").c_str(), "r")), id_(std::stoi(line())) {}
    ~Program() { end(SIGKILL); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    std::string line() { return read('\n'); }
    std::string rest() { return read(EOF); }
    // Returns the exit code; a signal of 0 waits for the end.
    int end(int signal) {
        if (output_ == nullptr) return 0;
        if (signal != 0) kill(id_, signal);
        return WEXITSTATUS(pclose(std::exchange(output_, nullptr)));
    }

 private:
    std::string read(int until) {
        std::string text;
        for (int c = fgetc(output_); c != EOF && c != until; c = fgetc(output_))
            text += static_cast<char>(c);
        return text;
    }

    FILE* output_;
    const pid_t id_;
};

// "device   http://127.0.0.1:40123  Access Controller, ..."; lines before it tell of the replay.
std::string addressOf(Program& simulator) {
    for (;;) {
        const std::string line = simulator.line();
        const size_t url = line.find("http://");
        if (line.empty()) return "";
        if (url != std::string::npos) return line.substr(url + 7, line.find(' ', url) - url - 7);
    }
}

struct TraceTest : testing::Test {
    TraceTest() {
        EXPECT_NE(mkdtemp(folder.data()), nullptr);
        setenv("http_proxy", "http://127.0.0.1:1", 1);  // is none of a device's business
    }
    ~TraceTest() override { fs::remove_all(folder); }

    std::string file(size_t number) const { return folder + "/" + std::to_string(number) + ".har"; }
    // What the command prints, with the device's address made general, and without the PIN.
    static std::string output(const std::string& command, const std::string& device,
                              const std::string& more) {
        Program host(VELTA_HOST " " + command + " --json --device " + device + " " + more);
        std::string text = std::regex_replace(host.rest(), std::regex(device), "DEVICE");
        text += "exit " + std::to_string(host.end(0));
        return std::regex_replace(text, std::regex(kPin), "[left out]");
    }

    std::string folder = (fs::temp_directory_path() / "velta-trace-XXXXXX").string();
};

std::string contents(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// Reads an archive and checks what the format demands of each entry.
Json::Value entriesOf(const std::string& path) {
    Json::Value har;
    std::istringstream(contents(path)) >> har;
    const Json::Value& log = har["log"];
    EXPECT_EQ(log["version"], "1.2");
    EXPECT_TRUE(log["creator"]["name"].isString() && log["creator"]["version"].isString());
    EXPECT_TRUE(log["entries"].isArray());
    const auto texts = [](const Json::Value& object, std::initializer_list<const char*> names) {
        for (const char* name : names)
            EXPECT_TRUE(object[name].isString()) << name;
    };
    const std::regex isoTime(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)");
    for (const Json::Value& entry : log["entries"]) {
        EXPECT_TRUE(std::regex_match(entry["startedDateTime"].asString(), isoTime));
        double time = 0;
        for (const char* name : {"blocked", "dns", "connect", "send", "wait", "receive", "ssl"})
            time += std::max(entry["timings"][name].asDouble(), 0.0);
        EXPECT_NEAR(entry["time"].asDouble(), time, 1e-6);
        for (const char* name : {"send", "wait", "receive"})
            EXPECT_GE(entry["timings"][name].asDouble(), 0);
        EXPECT_TRUE(entry["cache"].isObject() && entry["serverIPAddress"] == "127.0.0.1");
        for (const char* side : {"request", "response"}) {
            const Json::Value& message = entry[side];
            EXPECT_TRUE(message["headersSize"].isInt() && message["bodySize"].isInt());
            EXPECT_TRUE(message["cookies"].isArray() && message["headers"].isArray());
            for (const Json::Value& header : message["headers"])
                texts(header, {"name", "value"});
        }
        texts(entry["request"], {"method", "httpVersion"});
        EXPECT_TRUE(entry["request"]["queryString"].isArray());
        EXPECT_TRUE(entry["request"]["url"].asString().starts_with("http://127.0.0.1:"));
        const Json::Value& response = entry["response"];
        EXPECT_TRUE(response["status"].isInt() && response["content"]["size"].isInt());
        texts(response, {"statusText", "httpVersion", "redirectURL"});
        texts(response["content"], {"mimeType"});
    }
    return log["entries"];
}

}  // namespace

TEST_F(TraceTest, Replay_answersAsTheDevice) {
    const std::string secret = "recorded-secret-77";
    const std::string login = "--password " + secret;
    const std::string addPerson =
        R"(request POST /VELTA/AccessControl/UserInfo/Record?format=json '{"UserInfo":[{"employeeNo":"9",)"
        R"("password":"864209","Valid":{"beginTime":"2024-01-01T00:00:00","endTime":"2034-01-01T00:00:00"}}]}')";
    const std::string commands[] = {
        addPerson,    "request GET /VELTA/System/deviceInfo", "persons list",
        "doors list", "events --count 2 --for 100",
    };
    std::vector<std::string> outputs;
    {
        Program simulator(VELTA_SIM " --quiet --event-every 0.5 --picture " + login);
        const std::string device = addressOf(simulator);
        for (const std::string& command : commands)
            outputs.push_back(output(command, device, login + " --trace " + file(outputs.size())));
        output(commands[0], device, login + " --trace-secrets --trace " + file(99));
        EXPECT_NE(contents(file(99)).find(kPin), std::string::npos);
        EXPECT_NE(contents(file(99)).find("response="), std::string::npos);
    }
    for (size_t i = 0; i < outputs.size(); ++i) {
        SCOPED_TRACE(commands[i]);
        EXPECT_EQ(fs::status(file(i)).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_GE(entriesOf(file(i)).size(), 2U);
        const std::string text = contents(file(i));
        for (const char* word : {secret.c_str(), kPin, "response=", "/9j/"})  // base64 of every JPEG
            EXPECT_EQ(text.find(word), std::string::npos) << word;
        EXPECT_NE(text.find("Digest [left out]"), std::string::npos);
        EXPECT_NE(outputs[i].find("exit 0"), std::string::npos) << outputs[i];

        Program replay(VELTA_SIM " --password another --replay " + file(i));
        EXPECT_EQ(output(commands[i], addressOf(replay), "--password another"), outputs[i]);
    }
    EXPECT_NE(outputs[4].find("\"pictureBytes\":8842"), std::string::npos) << outputs[4];
}

TEST_F(TraceTest, Replay_tellsWhatItDoesNotKnow) {
    const std::string login = "--password velta-sim-1";
    Program simulator(VELTA_SIM " --quiet");
    output("request GET /VELTA/System/deviceInfo", addressOf(simulator), login + " --trace " + file(1));
    Program replay(VELTA_SIM " --quiet --replay " + file(1));
    const std::string answer = output("request GET /VELTA/System/time", addressOf(replay), login);
    EXPECT_EQ(answer.find("exit 0"), std::string::npos) << answer;
    EXPECT_EQ(replay.line(), "not recorded: GET /VELTA/System/time");

    std::ofstream(file(2)) << "{\"log\":";
    Program broken(VELTA_SIM " --replay " + file(2));
    EXPECT_NE(broken.rest().find(file(2) + ": not JSON: Line 1"), std::string::npos);
    EXPECT_EQ(broken.end(0), 2);
}

TEST_F(TraceTest, Trace_tellsWhyADeviceDoesNotAnswer) {
    const int reserved = socket(AF_INET, SOCK_STREAM, 0);  // bound, but nobody listens
    sockaddr_in address{};
    socklen_t size = sizeof address;
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(bind(reserved, reinterpret_cast<sockaddr*>(&address), size), 0);
    getsockname(reserved, reinterpret_cast<sockaddr*>(&address), &size);
    const std::string device = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    const std::string command = "request GET /VELTA/System/deviceInfo --password x";
    EXPECT_EQ(output(command, device, "--trace " + file(1)), output(command, device, ""));
    close(reserved);
    const Json::Value entries = entriesOf(file(1));
    ASSERT_GE(entries.size(), 1U);
    EXPECT_EQ(entries[0]["_error"], "no connection: Connection refused");
    EXPECT_EQ(entries[0]["response"]["status"], 0);
}

TEST_F(TraceTest, Trace_isWholeWhenTheHostIsKilled) {
    Program simulator(VELTA_SIM " --quiet");
    Program host(VELTA_HOST " events --password velta-sim-1 --trace " + file(1) + " --device " +
                 addressOf(simulator));
    EXPECT_TRUE(velta_test::waitUntil(  // until the first online check
        [&] { return contents(file(1)).find("userCheck") != std::string::npos; }));
    host.end(SIGKILL);
    EXPECT_GE(entriesOf(file(1)).size(), 1U);
}
