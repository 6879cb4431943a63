#include "panel_feed.h"

#include "control_views.h"

namespace veltasim {
namespace {

constexpr size_t kMostWatchers = 64;
constexpr std::chrono::milliseconds kPeriod{200};
constexpr const char* kHeader =
    "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nCache-Control: no-store\r\n"
    "X-Content-Type-Options: nosniff\r\nCross-Origin-Resource-Policy: same-origin\r\nConnection: "
    "close\r\n\r\n"
    "retry: 1000\n";

std::string message(const char* name, const Json::Value& data) {
    static const Json::StreamWriterBuilder compact = [] {
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        return builder;
    }();
    return std::string("event: ").append(name).append("\ndata: ") + Json::writeString(compact, data) + "\n\n";
}

// The message with what is new in the list, if anything is; remembers its last number.
std::string newsIn(const char* name, const Json::Value& list, uint64_t& last) {
    if (list.empty()) return "";
    last = list[list.size() - 1]["number"].asUInt64();
    return message(name, list);
}

}  // namespace

bool PanelFeed::open(Exchange& exchange, const Device& device) {
    if (watchers_.size() >= kMostWatchers) return false;
    Json::Value start;
    start["lastEvent"] = 0;
    for (const Device* one : devices_)
        start["devices"].append(one->deviceName());
    for (const Report& last : device.reportsAfter(0, 1))
        start["lastEvent"] = Json::UInt64(last.number);
    Watcher watcher{.device = &device, .overview = {}};
    const std::string news = kHeader + message("start", start) + newsFor(watcher);
    const Outlets::Id id = outlets_.open(exchange, [this](Outlets::Id gone) { watchers_.erase(gone); });
    watchers_.emplace(id, std::move(watcher));
    outlets_.push(id, news);
    if (!next_) tick();
    return true;
}

void PanelFeed::update() {
    std::vector<Outlets::Id> slow;
    for (auto& [id, watcher] : watchers_) {
        std::string news = newsFor(watcher);
        if (!news.empty() && !outlets_.push(id, std::move(news))) slow.push_back(id);
    }
    for (const Outlets::Id id : slow)
        outlets_.cut(id);
}

void PanelFeed::tick() {
    next_.reset();
    if (watchers_.empty()) return;
    next_ = loop_.after(kPeriod, [this] { tick(); });
    update();
}

std::string PanelFeed::newsFor(Watcher& watcher) const {
    std::string news;
    std::string overview = message("device", overviewOf(*watcher.device));
    if (overview != watcher.overview) news = watcher.overview = std::move(overview);
    news += newsIn("events", eventsAfter(*watcher.device, watcher.lastEvent), watcher.lastEvent);
    news += newsIn("requests", requestsAfter(*watcher.device, watcher.lastRequest), watcher.lastRequest);
    return news;
}

}  // namespace veltasim
