// velta-host request: one request to a device, and its answer.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <fstream>
#include <memory>
#include <sstream>

#include "answer.h"
#include "commands.h"
#include "exchange.h"
#include "host.h"
#include "input.h"
#include "text.h"

namespace host {
namespace {

constexpr const char* kFooter = R"(
The answer goes to standard output, JSON with line feeds; what is wrong with it to standard error. The host's own
parameter "devIndex", which every request of a host has, is added to URIs that have none.

Examples:
  velta-host request --device 192.168.1.20 GET /VELTA/System/deviceInfo
  velta-host request --device 192.168.1.20 GET "/VELTA/AccessControl/capabilities?format=json"
  velta-host request --device 192.168.1.20 PUT /VELTA/System/time @time.xml
  date_document | velta-host request --device 192.168.1.20 --password-file ~/.velta PUT /VELTA/System/time -)";

struct RequestOptions {
    std::string device;
    LoginOptions login;
    std::string method;
    std::string uri;
    std::string body;
    bool raw = false;
};

std::string checkUri(const std::string& uri) {
    const auto isWrong = [](unsigned char c) { return c <= ' ' || c == 0x7F; };
    if (!uri.starts_with('/'))
        return "\"" + uri + "\" is no URI of a device: it begins with \"/\", as in /VELTA/System/time";
    if (std::any_of(uri.begin(), uri.end(), isWrong))
        return "the URI holds a blank or a control character: write %20";
    return "";
}

std::string bodyFrom(const std::string& argument, Waiter& waiter) {
    if (argument == "-") return readAll(STDIN_FILENO, waiter);
    if (!argument.starts_with('@')) return argument;
    std::ifstream file(argument.substr(1), std::ios::binary);
    std::ostringstream text;
    if (!(text << file.rdbuf()))
        throw Failure(ExitCode::WrongUsage, argument.substr(1) + ": can't be read, or is empty");
    return text.str();
}

void checkBody(const std::string& uri, const std::string& body, Console& console) {
    Json::Value ignored;
    if (!body.empty() && uri.find("format=json") != std::string::npos && !parseJson(body, ignored))
        console.note("velta-host: the body is not valid JSON; it is sent as it stands");
}

void show(const RequestOptions& options, const std::string& answer, const Verdict& verdict,
          Console& console) {
    if (options.raw && !console.isJson()) return console.raw(answer);
    Json::Value json;
    const bool isJson = parseJson(answer, json);
    Json::Value object;
    object["type"] = "answer";
    object["device"] = options.device;
    object["ok"] = verdict.code == ExitCode::Ok;
    if (!verdict.reason.empty()) object["reason"] = verdict.reason;
    object["answer"] = isJson && !options.raw ? json : Json::Value(answer);
    console.result(isJson ? prettyJson(json) : answer.substr(0, answer.find_last_not_of("\r\n") + 1), object);
}

ExitCode runRequest(const CommonOptions& common, const RequestOptions& options) {
    Host host(common);
    host.connect({options.device}, options.login);
    const std::string body = bodyFrom(options.body, host.waiter);
    checkBody(options.uri, body, host.console);

    const Session& session = *host.sessions.front();
    const std::string answer = host.request(session, options.method, options.uri, body);
    const Verdict verdict = judgeAnswer(answer);
    show(options, answer, verdict, host.console);
    if (!verdict.reason.empty()) host.console.note("velta-host: " + verdict.reason);
    if (!verdict.hint.empty()) host.console.note("            " + verdict.hint);
    if (!verdict.isConclusive) {
        if (const auto obstacle = findObstacle(host, session)) throw Failure(*obstacle);
        host.console.note(
            "            the device answers, and takes the password: it is this request that failed");
    }
    return verdict.code;
}

}  // namespace

void addRequestCommand(CLI::App& app, CommonOptions& common, Run& run) {
    CLI::App* command = app.add_subcommand("request", "Send one request to a device and print the answer");
    auto options = std::make_shared<RequestOptions>();
    command->add_option("METHOD", options->method, "GET, PUT, POST or DELETE")
        ->required()
        ->type_name("")
        ->transform(CLI::IsMember({"GET", "PUT", "POST", "DELETE"}, CLI::ignore_case).description(""));
    command->add_option("URI", options->uri, "Path and query, as in /VELTA/System/deviceInfo")
        ->required()
        ->type_name("")
        ->check(checkUri);
    command->add_option("BODY", options->body, "The body; @FILE: what is in the file; -: standard input")
        ->type_name("");
    command->add_flag("--raw", options->raw, "Print the answer byte for byte");
    addDevice(*command, options->device);
    addLoginOptions(*command, options->login);
    addCommonOptions(*command, common);
    command->footer(kFooter);
    command->callback(
        [&common, &run, options] { run = [&common, options] { return runRequest(common, *options); }; });
}

}  // namespace host
