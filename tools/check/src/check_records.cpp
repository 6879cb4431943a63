// The event records, byte by byte: where a field stands is written here in numbers.
#include <json/json.h>

#include <algorithm>

#include "answers.h"
#include "check.h"
#include "library.h"

namespace check {
namespace {

constexpr size_t kRecordSize = 10832;

struct Field {
    size_t offset;
    size_t width;
};
constexpr Field kPayload{12, 10240};
constexpr Field kDateTime{10376, 32};
constexpr Field kDescription{10472, 256};
constexpr Field kAddress{10728, 32};
constexpr Field kDeviceId{10764, 32};
constexpr Field kTexts[] = {kPayload, kDateTime, kDescription, kAddress, kDeviceId};
constexpr Field kReserved[] = {{10252, 48}, {10312, 64}, {10408, 64}, {10796, 32}, {10829, 3}};

constexpr size_t kSizeAt = 0;
constexpr size_t kCodeAt = 8;
constexpr size_t kChannelAt = 10300;
constexpr size_t kPostCountAt = 10304;
constexpr size_t kStateAt = 10308;
constexpr size_t kPortAt = 10760;
constexpr size_t kGenericAt = 10828;

constexpr std::string_view kPayloadStart = ",\"AccessControllerEvent\":";

std::string text(const Event& event, const Field& field) {
    return event.textAt(field.offset, field.width);
}

template <typename Integer>
Integer integer(const Event& event, size_t offset) {
    return Event::at<Integer>(event.record, offset);
}

bool isZero(const std::string& bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c == '\0'; });
}

// What is the same in every record.
void expectFrame(Trial& trial, const Event& event, uint32_t code, uint8_t generic) {
    trial.number("8 bytes at 0, the size", kRecordSize, integer<uint64_t>(event, kSizeAt));
    trial.code("4 bytes at 8, the event code", code, integer<uint32_t>(event, kCodeAt));
    trial.number("1 byte at 10828, the flag of generic alarms", generic, integer<uint8_t>(event, kGenericAt));
    for (const Field& field : kReserved)
        trial.holds(
            "the " + std::to_string(field.width) + " bytes at " + std::to_string(field.offset) + " are zero",
            isZero(event.record.substr(field.offset, field.width)));
    for (const Field& field : kTexts) {
        const std::string bytes = event.record.substr(field.offset, field.width);
        const size_t end = bytes.find('\0');
        trial.holds(
            "the text at " + std::to_string(field.offset) + " ends within its field, and zeros follow",
            end != std::string::npos && isZero(bytes.substr(end)));
    }
}

void accessEvent(Trial& trial) {
    ArmedScene scene(trial);
    scene.device.sendAccessEvent(
        {.name = "Grace Example", .cardNo = "77", .dateTime = "2026-01-02T03:04:05+01:00"});
    scene.receive(1);
    const Event event = scene.inbox.events()[0];
    expectFrame(trial, event, 0xD0015, 0);
    trial.number("4 bytes at 10300, the channel", 1, integer<int32_t>(event, kChannelAt));
    trial.number("4 bytes at 10304, the post count", 1, integer<int32_t>(event, kPostCountAt));
    trial.number("4 bytes at 10308, the state", 1, integer<int32_t>(event, kStateAt));
    trial.text("text at 10376, the time", "2026-01-02T03:04:05+01:00", text(event, kDateTime));
    trial.text("text at 10472, the description of generic alarms", "", text(event, kDescription));
    trial.text("text at 10728, the address", "127.0.0.1", text(event, kAddress));
    trial.number("4 bytes at 10760, the port", scene.device.port(), integer<int32_t>(event, kPortAt));
    trial.text("text at 10764, the device's id", "88", text(event, kDeviceId));
    const std::string payload = text(event, kPayload);
    trial.must(trial.text("start of the text at 12", kPayloadStart, payload.substr(0, kPayloadStart.size())));
    const Json::Value member =
        mustBeObject(trial, "the member behind it", payload.substr(kPayloadStart.size()));
    trial.text("its \"name\"", "Grace Example", member["name"].asString());
    trial.text("its \"cardNo\"", "77", member["cardNo"].asString());
    trial.holds("it is written compactly", payload.find(": ") == std::string::npos);
}

void genericAlarm(Trial& trial) {
    ArmedScene scene(trial);
    scene.device.sendAlarm({.eventType = "tamper",
                            .eventState = "inactive",
                            .eventDescription = "Opened",
                            .channelId = 5,
                            .dateTime = "2026-01-02T03:04:05Z",
                            .moreMembers = {{"activePostCount", "7"}}});
    scene.receive(1);
    const Event event = scene.inbox.events()[0];
    expectFrame(trial, event, 0, 1);
    trial.number("4 bytes at 10300, the channel", 5, integer<int32_t>(event, kChannelAt));
    trial.number("4 bytes at 10304, the post count", 7, integer<int32_t>(event, kPostCountAt));
    trial.number("4 bytes at 10308, the state", 0, integer<int32_t>(event, kStateAt));
    trial.text("text at 10376, the time", "2026-01-02T03:04:05Z", text(event, kDateTime));
    trial.text("text at 10472, the description", "Opened", text(event, kDescription));
    trial.text("text at 10728, the address", "127.0.0.1", text(event, kAddress));
    trial.number("4 bytes at 10760, the port", scene.device.port(), integer<int32_t>(event, kPortAt));
    trial.text("source of channel 5", "D_5", event.sourceId);
    const Json::Value alarm = mustBeObject(trial, "the text at 12, the whole alarm", text(event, kPayload));
    trial.text("its \"eventType\"", "tamper", alarm["eventType"].asString());
    trial.number("its \"channelID\"", 5, alarm["channelID"].asInt());
}

// Sends one alarm of these further members, and gives the event that comes of it.
Event eventOf(ArmedScene& scene, const veltasim::MoreMembers& members) {
    const size_t before = scene.inbox.events().size();
    scene.device.sendAlarm({.moreMembers = members});
    scene.receive(before + 1);
    return scene.inbox.events()[before];
}

void defaults(Trial& trial) {
    ArmedScene scene(trial);
    const Event event = eventOf(scene, {{"channelID", "\"5\""},
                                        {"activePostCount", "null"},
                                        {"eventState", "0"},
                                        {"deviceID", "88"},
                                        {"eventDescription", "{}"}});
    trial.number("channel when \"channelID\" is no number", 1, integer<int32_t>(event, kChannelAt));
    trial.number("count when \"activePostCount\" is no number", 1, integer<int32_t>(event, kPostCountAt));
    trial.number("state when \"eventState\" is no text", 1, integer<int32_t>(event, kStateAt));
    trial.text("id when \"deviceID\" is no text", "", text(event, kDeviceId));
    trial.text("description when it is no text", "", text(event, kDescription));
    for (const auto& [state, expected] : {std::pair{"active", 1}, {"inactive", 0}, {"Active", 0}, {"", 0}}) {
        const Event other = eventOf(scene, {{"eventState", '"' + std::string(state) + '"'}});
        trial.number("state of " + shown(state), expected, integer<int32_t>(other, kStateAt));
    }
}

std::string quoted(size_t length) {
    return '"' + std::string(length, 'x') + '"';
}

void cutTexts(Trial& trial) {
    constexpr size_t kLongestAccess = 2047;
    ArmedScene scene(trial);
    const Event alarm = eventOf(scene, {{"deviceID", quoted(100)},
                                        {"dateTime", quoted(100)},
                                        {"eventDescription", quoted(1000)},
                                        {"filler", quoted(20000)}});
    expectFrame(trial, alarm, 0, 1);
    for (const Field& field : {kDeviceId, kDateTime, kDescription, kPayload})
        trial.number("length of the text at " + std::to_string(field.offset), field.width - 1,
                     text(alarm, field).size());
    const Event access = eventOf(scene, {{"AccessControllerEvent", "{\"name\":" + quoted(5000) + "}"}});
    expectFrame(trial, access, 0xD0015, 0);
    trial.number("length of the text at 12 of an access event", kLongestAccess,
                 text(access, kPayload).size());
    trial.number("bytes of the address", 9, text(access, kAddress).size());
}

constexpr size_t kMimeEnd = 4;  // "\r\n\r\n"

void pictures(Trial& trial) {
    ArmedScene scene(trial);
    using veltasim::PictureSize;
    size_t count = 0;
    for (const PictureSize size : {PictureSize::Small, PictureSize::Medium, PictureSize::Large}) {
        const std::string jpeg(veltasim::picture(size));
        scene.device.sendAccessEvent({.picture = jpeg});
        scene.receive(++count);
        const Event event = scene.inbox.events().back();
        expectFrame(trial, event, 0xD0015, 0);
        trial.must(trial.holds("an event with a picture has an extension", !event.extension.empty()));
        trial.number("8 bytes at 0 of the extension, its kind", 8, Event::at<uint64_t>(event.extension, 0));
        trial.number("4 bytes at 16, the number of items", 1, Event::at<int32_t>(event.extension, 16));
        trial.holds("the 68 bytes at 20 are zero", isZero(event.extension.substr(20)));
        trial.holds("the 8 bytes at 0 of the item are zero", isZero(event.item.substr(0, 8)));
        trial.holds("the 68 bytes at 20 of the item are zero", isZero(event.item.substr(20)));
        trial.number("byte behind the data", 0, static_cast<int>(event.data.back()));
        trial.contains("headers of the picture", "Content-Type: image/jpeg", event.data.substr(0, 500));
        trial.contains("headers of the picture", "Content-Length: " + std::to_string(jpeg.size()) + "\r\n",
                       event.data.substr(0, 500));
        const size_t start = event.data.find("\r\n\r\n");
        trial.must(trial.holds("an empty line follows the headers", start != std::string::npos));
        trial.text("the JPEG", jpeg, event.data.substr(start + kMimeEnd, jpeg.size()));
    }
}

void withoutPicture(Trial& trial) {
    ArmedScene scene(trial);
    scene.device.sendAccessEvent();
    scene.receive(1);
    scene.device.sendAlarm();
    scene.receive(2);
    for (const Event& event : scene.inbox.events())
        trial.holds("the extension is null", event.extension.empty());
}

constexpr Check kChecks[] = {
    {"records", "access-event", "an access event fills 10832 bytes, each field at its offset", accessEvent,
     Pace::Waits},
    {"records", "generic-alarm", "a generic alarm has code 0, its flag, and the whole alarm as text",
     genericAlarm, Pace::Waits},
    {"records", "defaults", "channel and count are 1, the state is active, where the device says nothing",
     defaults, Pace::Waits},
    {"records", "cut-texts", "texts are cut to their fields and end with a zero", cutTexts, Pace::Waits},
    {"records", "pictures", "a picture comes whole, as one item of the 88-byte extension", pictures,
     Pace::Waits},
    {"records", "without-picture", "an event without a picture has no extension", withoutPicture,
     Pace::Waits},
};

}  // namespace

std::span<const Check> recordChecks() {
    return kChecks;
}

}  // namespace check
