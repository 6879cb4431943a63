// The requests in docs/, asked of a simulated device through the built library: the pages show what really happens.
// With VELTA_UPDATE_DOCS=1 in the environment, what differs is written into the pages instead.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "fixture.h"
#include "pages.h"

using namespace docs;

namespace {

const std::string kDocs = VELTA_SOURCE_DIR "/docs";
constexpr std::chrono::sys_seconds kNoon{std::chrono::seconds{1795258800}};  // 2026-11-21T12:00:00+01:00

std::string textOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

Lines linesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/* By their paths. */
std::map<std::string, Lines> pages() {
    std::map<std::string, Lines> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kDocs)) {
        if (entry.path().extension() == ".md") found[entry.path()] = linesOf(textOf(entry.path()));
    }
    return found;
}

/* Writes what is shown below a request anew. */
void update(Lines& page, const Example& example, const std::string& sent, const std::string& answer) {
    const std::string toDevice = sent.empty() ? "" : "\n```http to-device\n" + sent + "```\n";
    const Lines fresh = linesOf(toDevice + "\n```json answer\n" + answer + "```");
    const size_t first = example.request.end + 1;
    const size_t end = std::max({first, example.toDevice.end + 1, example.answer.end + 1});
    const auto at = page.begin() + static_cast<std::ptrdiff_t>(first);
    page.insert(page.erase(at, page.begin() + static_cast<std::ptrdiff_t>(end)), fresh.begin(), fresh.end());
}

class ExamplesTest : public host::SessionTest {
 protected:
    ExamplesTest() : SessionTest({.auth = veltasim::AuthScheme::None}) {}

    struct Outcome {
        std::vector<DeviceRequest> sent;
        std::string answer;
    };
    /* Each example has a session and a device of its own: some restart it. */
    Outcome ask(const Example& example) {
        veltasim::Device fresh{{.auth = veltasim::AuthScheme::None}};
        fresh.start();
        fresh.loadState(textOf(kDocs + "/requests/site.json"));
        fresh.setDeviceTime(kNoon);
        host::Session own(library);
        own.connectTo(fresh.port());
        if (example.request.flag == "online") {
            EXPECT_TRUE(own.waitForStatus(VELTA_STATUS_ONLINE));
        }
        Outcome outcome{{}, own.request(example.method, example.uri, example.body)};
        for (const auto& request : fresh.requests()) {
            if (request.target != "/VELTA/Security/userCheck")
                outcome.sent.push_back({request.method + " " + request.target, request.body});
        }
        return outcome;
    }
};

TEST_F(ExamplesTest, happenAsThePagesShow) {
    const bool isUpdate = std::getenv("VELTA_UPDATE_DOCS") != nullptr;
    for (const auto& [path, page] : pages()) {
        const auto examples = examplesIn(path, page);
        Lines updated = page;
        for (auto example = examples.rbegin(); example != examples.rend(); ++example) {
            const Outcome outcome = ask(*example);
            const std::string sent = prettyRequests(*example, outcome.sent);
            const std::string answer = pretty(outcome.answer);
            const bool showsSent = showsRequests(*example, outcome.sent);
            const bool showsAnswer = shows(example->answer.text, outcome.answer);
            if (!isUpdate) {
                EXPECT_TRUE(showsSent) << example->place << ": the device got\n" << sent;
                EXPECT_TRUE(showsAnswer) << example->place << ": the host got\n" << answer;
            } else if (!showsSent || !showsAnswer) {
                update(updated, *example, showsSent ? example->toDevice.text : sent,
                       showsAnswer ? example->answer.text : answer);
            }
        }
        if (updated == page) continue;
        std::ofstream file(path);
        for (const std::string& line : updated)
            file << line << "\n";
    }
}

TEST_F(ExamplesTest, coverEveryRoute) {
    std::vector<Example> all;
    for (const auto& [path, page] : pages()) {
        const auto examples = examplesIn(path, page);
        all.insert(all.end(), examples.begin(), examples.end());
    }
    const std::string source = textOf(VELTA_SOURCE_DIR "/src/gateway/CommonRoutes.cpp");
    static const std::regex kRow(R"re(\{"(/VELTA/[^"]*)", \d, \{(.*)\}\},)re");
    static const std::regex kMethod(R"re(\{"([A-Z]+)", )re");
    const std::string index = textOf(kDocs + "/requests.md");
    size_t rows = 0;
    for (std::sregex_iterator row(source.begin(), source.end(), kRow), end; row != end; ++row, ++rows) {
        const std::regex uri(std::regex_replace(row->str(1), std::regex("%d"), "\\d+") + "\\?format=json");
        const std::string methods = row->str(2);
        EXPECT_THAT(index, testing::HasSubstr(
                               "\n| " + std::regex_replace(row->str(1), std::regex("%d"), "N") + " | "));
        for (std::sregex_iterator method(methods.begin(), methods.end(), kMethod); method != end; ++method) {
            const bool isThere = std::any_of(all.begin(), all.end(), [&](const Example& example) {
                return example.method == method->str(1) && std::regex_match(example.uri, uri);
            });
            EXPECT_TRUE(isThere) << "no example of " << method->str(1) << " " << row->str(1);
        }
    }
    EXPECT_GT(rows, 0U);
}

/* Rows such as "| 0x60000001 | badParameters | ...": the names are those that hosts get. */
TEST_F(ExamplesTest, nameErrorsAsAnswersDo) {
    static const std::regex kRow(R"(\| (0x[0-9A-F]{8}) \| ([A-Za-z]+) \|.*)");
    std::set<std::pair<std::string, std::string>> errors;
    for (const auto& [path, page] : pages()) {
        std::smatch row;
        for (const std::string& line : page) {
            if (std::regex_match(line, row, kRow)) errors.emplace(row.str(1), row.str(2));
        }
    }
    EXPECT_FALSE(errors.empty());
    for (const auto& [number, name] : errors) {
        const std::string code = std::to_string(std::stoul(number, nullptr, 16));
        device.setDocument(
            "/VELTA/System/deviceInfo",
            "<ResponseStatus><statusCode>4</statusCode><errorCode>" + code + "</errorCode></ResponseStatus>");
        EXPECT_THAT(session->request("GET", "/VELTA/System/deviceInfo?format=json"),
                    testing::HasSubstr("\"subStatusCode\":\"" + name + "\""))
            << number;
    }
}

}  // namespace
