#include "bare.h"

#include <curl/curl.h>
#include <json/reader.h>
#include <json/writer.h>

#include "fast_server.h"

// The reader and writer that the plug-in uses too.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace bench {

namespace {

size_t append(char* bytes, size_t, size_t count, void* text) {
    static_cast<std::string*>(text)->append(bytes, count);
    return count;
}

}  // namespace

std::string bareExchange(const std::string& method, const std::string& url, const std::string& body) {
    std::string answer;
    CURL* const handle = curl_easy_init();
    curl_slist* headers = nullptr;
    for (const char* header : {"Connection: keep-alive", "Cache-Control: no-cache", "Accept: application/xml",
                               "Content-Type: application/xml;charset=UTF-8", "Expect:"}) {
        headers = curl_slist_append(headers, header);
    }
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
    if (!body.empty()) {
        curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
        curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body.c_str());
    }
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, method.c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPAUTH, CURLAUTH_DIGEST | CURLAUTH_BASIC);
    curl_easy_setopt(handle, CURLOPT_USERNAME, kUser);
    curl_easy_setopt(handle, CURLOPT_PASSWORD, kPassword);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_PROXY, "");
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, 15000L);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &answer);
    if (curl_easy_perform(handle) != CURLE_OK) answer.clear();
    curl_easy_cleanup(handle);
    curl_slist_free_all(headers);
    return answer;
}

std::string bareJson(const std::string& text) {
    Json::Value root;
    Json::Reader reader;
    reader.parse(text.data(), text.data() + text.size(), root);
    return Json::FastWriter().write(root);
}

}  // namespace bench
