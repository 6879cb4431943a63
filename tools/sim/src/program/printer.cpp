#include "program/printer.h"

#include <iomanip>
#include <iostream>
#include <sstream>

namespace veltasim {

void Printer::device(const Device& device) {
    const Options& options = device.options();
    Json::Value line;
    line["device"] = device.deviceName();
    line["url"] = device.url();
    if (options.auth != AuthScheme::None) line["user"] = options.user;
    print(line, "device   " + device.url() + "  " + device.deviceName() +
                    (options.auth == AuthScheme::None ? ", no log-in" : ", user " + options.user));
}

void Printer::control(const std::string& url) {
    Json::Value line;
    line["control"] = url + "/control";
    print(line, "control  " + url + "/control");
}

void Printer::panel(const std::string& url) {
    Json::Value line;
    line["panel"] = url;
    print(line, "panel    " + url);
}

void Printer::request(const RequestRecord& record) {
    if (quiet_) return;
    const double milliseconds = static_cast<double>(record.duration.count()) / 1000;
    Json::Value line;
    line["port"] = record.devicePort;
    line["method"] = record.method;
    line["target"] = record.target;
    line["status"] = record.status;
    line["microseconds"] = Json::Int64(record.duration.count());
    std::ostringstream text;
    text << record.method << ' ' << record.target << ' ' << record.status << ' ' << std::fixed
         << std::setprecision(1) << milliseconds << " ms";
    print(line, text.str());
}

void Printer::message(const std::string& text) {
    Json::Value line;
    line["message"] = text;
    print(line, text);
}

void Printer::print(const Json::Value& line, const std::string& text) {
    Json::StreamWriterBuilder compact;
    compact["indentation"] = "";
    const std::string out = json_ ? Json::writeString(compact, line) : text;
    const std::lock_guard lock(mutex_);
    std::cout << out << std::endl;
}

}  // namespace veltasim
