#include "program/console.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace veltasim {
namespace {

using Words = std::vector<std::string>;

struct Context {
    Device& device;
    const StateFile& stateFile;
    const Words& words;
};

unsigned readerIn(const Words& words) {
    if (words.size() < 3) return 1;
    unsigned reader = 0;
    const char* end = words[2].data() + words[2].size();
    const auto [stop, error] = std::from_chars(words[2].data(), end, reader);
    if (error != std::errc() || stop != end) throw std::invalid_argument("no such reader: " + words[2]);
    return reader;
}

std::string told(const Passage& passage) {
    std::string text =
        "reader " + std::to_string(passage.doorNo) + ": " + std::string(nameOf(passage.outcome));
    if (!passage.employeeNo.empty()) text += ", person " + passage.employeeNo;
    return text;
}

std::string card(const Context& context) {
    return told(context.device.presentCard(context.words[1], readerIn(context.words)));
}

std::string face(const Context& context) {
    return told(context.device.presentFace(context.words[1], readerIn(context.words)));
}

std::string save(const Context& context) {
    if (!context.stateFile.isThere()) throw std::invalid_argument("there is no --state FILE to save to");
    context.stateFile.save(context.device);
    return "saved to " + context.stateFile.path();
}

std::string help(const Context& context);

struct Command {
    std::string_view name;
    std::string_view arguments;
    size_t fewestWords;
    size_t mostWords;
    std::string (*run)(const Context&);
    std::string_view meaning;
};

constexpr std::array kCommands{
    Command{"card", "NUMBER [READER]", 2, 3, card, "somebody holds a card to a reader"},
    Command{"face", "EMPLOYEE [READER]", 2, 3, face, "somebody shows a face to a reader"},
    Command{"save", "", 1, 1, save, "writes the state to its file"},
    Command{"help", "", 1, 1, help, "lists the commands"},
};

std::string usageOf(const Command& command) {
    return std::string(command.name) + (command.arguments.empty() ? "" : " ") +
           std::string(command.arguments);
}

std::string help(const Context&) {
    std::string text = "commands:";
    for (const Command& command : kCommands)
        text.append("\n  ").append(usageOf(command)).append(": ").append(command.meaning);
    return text;
}

}  // namespace

void Console::obey(const std::string& line) {
    std::istringstream text(line);
    Words words;
    for (std::string word; text >> word;)
        words.push_back(word);
    if (words.empty()) return;
    const auto* command = std::find_if(kCommands.begin(), kCommands.end(),
                                       [&](const Command& row) { return row.name == words[0]; });
    if (command == kCommands.end()) return say_("unknown command: " + words[0] + "; \"help\" lists them");
    if (words.size() < command->fewestWords || words.size() > command->mostWords)
        return say_("usage: " + usageOf(*command));
    try {
        say_(command->run({device_, stateFile_, words}));
    } catch (const std::exception& error) {
        say_(error.what());
    }
}

bool Console::read() {
    std::array<char, 4096> bytes{};
    const ssize_t size = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (size <= 0) {
        obey(std::exchange(pending_, ""));
        return false;
    }
    pending_.append(bytes.data(), static_cast<size_t>(size));
    for (size_t end = pending_.find('\n'); end != std::string::npos; end = pending_.find('\n')) {
        obey(pending_.substr(0, end));
        pending_.erase(0, end + 1);
    }
    return true;
}

}  // namespace veltasim
