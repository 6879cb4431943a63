// Documents of one MiB that are made to be slow: none may take more than 50 ms, whatever it holds. Of those that the
// guards refuse, most of what they let through is measured.
#include <benchmark/benchmark.h>

#include <string>
#include <utility>
#include <vector>

#include "gateway/CXmlBase.h"
#include "gateway/InputGuard.h"
#include "gateway/JsonText.h"

namespace {

constexpr size_t kMiB = 1U << 20U;

/* unit again and again between head and tail, at most times times and at most a MiB. */
std::string document(const std::string& head, const std::string& unit, const std::string& tail,
                     size_t times = kMiB) {
    std::string text = head;
    for (; times > 0 && text.size() + unit.size() + tail.size() <= kMiB; --times)
        text += unit;
    return text + tail;
}

std::string repeated(const std::string& unit, int times) {
    std::string text;
    while (times-- > 0)
        text += unit;
    return text;
}

std::string manyNames() {
    std::string text = "{";
    for (int i = 0; i < static_cast<int>(velta::kMaxJsonValues) - 2; ++i)
        text += "\"k" + std::to_string(i * 7919 % 100003) + "\":1,";
    return text + "\"z\":1}";
}

using Documents = std::vector<std::pair<std::string, std::string>>;

Documents jsonDocuments() {
    const size_t most = velta::kMaxJsonValues - 2;
    return {
        {"numbers", document("[", "1,", "1]", most)},
        {"fractions", document("[", "1.5e300,", "1]", most)},
        {"texts", document("[", "\"\",", "1]", most)},
        {"objects", document("[", "{},", "1]", most / 2)},
        {"nested arrays", document("[", repeated("[", 100) + repeated("]", 100) + ",", "1]", most / 101)},
        {"names", manyNames()},
        {"comments", document("{\"a\":1", "/**/", "}")},
        {"escapes", document("\"", "\\u00e9", "\"")},
        {"wrong numbers", document("[", "-,", "1]", most)},
        {"wrong brackets", document("{\"a\":", "[}", "}")},
        {"one long number", document("[", "9", "]")},
    };
}

Documents xmlDocuments() {
    const size_t most = velta::kMaxXmlElements - 2;
    std::string wide = "<a";
    for (int i = 0; i < velta::kMaxXmlAttributes; ++i)
        wide += " a" + std::to_string(i) + "=''";
    return {
        {"elements", document("<r>", "<a/>", "</r>", most)},
        {"nested elements",
         document("<r>", repeated("<a>", 100) + repeated("</a>", 100), "</r>", most / 100)},
        {"attributes", document("<r>", wide + "/>", "</r>")},
        {"comments", document("<r>", "<!---->", "</r>")},
        {"unknown", document("<r>", "<!x>", "</r>")},
        {"instructions", document("<r>", "<?a?>", "</r>")},
        {"ampersands", document("<r>", "&", "</r>")},
        {"references", document("<r>", "&#x41;", "</r>")},
        {"never closed", document("<r>", "<!-- ", "")},
        {"one long name", document("<", "a", "/>")},
    };
}

void parseJsonOf(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
        Json::Value root;
        benchmark::DoNotOptimize(velta::parseJson(text, root));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void parseXmlOf(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {  // NOLINT(clang-analyzer-deadcode.DeadStores)
        CXmlBase xml;
        benchmark::DoNotOptimize(xml.Parse(text.c_str()));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

[[maybe_unused]] const bool kRegistered = [] {
    for (const auto& [name, text] : jsonDocuments())
        benchmark::RegisterBenchmark(("hostileJson/" + name).c_str(), parseJsonOf, text)
            ->Unit(benchmark::kMillisecond);
    for (const auto& [name, text] : xmlDocuments())
        benchmark::RegisterBenchmark(("hostileXml/" + name).c_str(), parseXmlOf, text)
            ->Unit(benchmark::kMillisecond);
    return true;
}();

}  // namespace
