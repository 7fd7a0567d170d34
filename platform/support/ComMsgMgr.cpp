#include "support/ComMsgMgr.h"

#include "support/HIOStream.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <boost/algorithm/string/join.hpp>
#include <rapidjson/document.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <map>
#include <sstream>
#include <utility>

namespace {

constexpr const char* catalogFile = "plaz/messages.json";

struct CatalogEntry {
    std::string text;
    bool isGoodNews = false;
};
using Catalog = std::map<std::string, CatalogEntry>;

// RATIONALE: read without the host's JSON utilities, which report through this service.
const rapidjson::Value* find(const rapidjson::Value& object, const char* key) {
    return object.IsObject() && object.HasMember(key) ? &object[key] : nullptr;
}

std::string getText(const rapidjson::Value& message, const char* key) {
    const rapidjson::Value* text = find(message, key);
    return text && text->IsString() ? std::string(text->GetString(), text->GetStringLength()) : std::string();
}

// A catalog that is missing or damaged is an empty one: messages then show their id and their arguments.
Catalog readCatalog() {
    constexpr unsigned parseFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    Catalog catalog;
    std::string text;
    if (HIOStream::read(HUTEnv::getOwnDataDir(catalogFile) + "/" + catalogFile, text) != HIOStream::Status::ok)
        return catalog;
    rapidjson::Document document;
    document.Parse<parseFlags>(text.data(), text.size());
    const rapidjson::Value* messages = find(document, "messages");
    if (!messages || !messages->IsArray()) return catalog;
    for (const rapidjson::Value& message : messages->GetArray())
        catalog[getText(message, "id")] = {getText(message, "text"), getText(message, "label") == "info"};
    return catalog;
}

const Catalog& getCatalog() {
    static const Catalog catalog = readCatalog();
    return catalog;
}

const CatalogEntry* findEntry(const std::string& id) {
    const auto found = getCatalog().find(id);
    return found == getCatalog().end() ? nullptr : &found->second;
}

std::string idOfKey(const std::string& key) {
    if (key.empty() || key.front() != '@') return key;
    return key.substr(1, key.find('@', 1) - 1);
}

/// A command line as people would write it: the program without its folder and its ending.
std::string shownCommand(const std::string& line) {
    const bool isQuoted = !line.empty() && line.front() == '\'';
    const std::size_t end = std::min(isQuoted ? line.find('\'', 1) : line.find(' '), line.size());
    const std::string program = line.substr(isQuoted ? 1 : 0, end - (isQuoted ? 1 : 0));
    const std::string name = program.substr(program.find_last_of("/\\") + 1);
    return name.substr(0, name.find('.')) + line.substr(std::min(end + (isQuoted ? 1 : 0), line.size()));
}

/// What a program has said of its failure, a few lines in one, without the words that every such line begins with.
std::string shownReason(const std::string& lines) {
    constexpr std::size_t mostInOne = 3;
    std::vector<std::string> reasons;
    std::istringstream text(lines);
    for (std::string line; std::getline(text, line);) {
        for (const char* begin : {"fatal: ", "error: "})
            if (line.rfind(begin, 0) == 0) line.erase(0, std::strlen(begin));
        if (!line.empty()) reasons.push_back(line);
    }
    return boost::algorithm::join(reasons, reasons.size() > mostInOne ? "\n" : "; ");
}

/// A file or directory that could not be written to, with what stood in the way.
std::string shownPlace(const std::string& path) {
    const std::string obstacle = HUTFile::findWriteObstacle(path);
    return '"' + path + '"' +
           (obstacle.empty() ? " (check its disk, your rights there, and that no program uses it)"
                             : ", since " + obstacle);
}

std::string fillIn(const std::string& text, const std::vector<std::string>& args) {
    std::string result;
    auto arg = args.begin();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '%' && i + 1 < text.size() ? text[i + 1] : '\0';
        if (next == 's' && arg != args.end())
            result += *arg++;
        else if (next == 'c' && arg != args.end())
            result += shownCommand(*arg++);
        else if (next == 'w' && arg != args.end())
            result += shownPlace(*arg++);
        else if (next == 'r' && arg != args.end())
            result += shownReason(*arg++);
        else if (next == '%')
            result += '%';
        else {
            result += text[i];
            continue;
        }
        ++i;
    }
    return result;
}

std::string join(const std::vector<std::string>& args) {
    std::string result;
    for (const std::string& arg : args) {
        if (!result.empty()) result += ' ';
        result += arg;
    }
    return result;
}

const char* labelOf(MsgSeverity severity, bool isGoodNews) {
    switch (severity) {
    case MsgSeverity::error:
    case MsgSeverity::fileError:
        return "ERROR";
    case MsgSeverity::criticalWarning:
    case MsgSeverity::fileWarning:
        return "CRITICAL WARNING";
    case MsgSeverity::warning:
        return isGoodNews ? "INFO" : "WARNING";
    case MsgSeverity::info:
        break;
    }
    return "INFO";
}

void writeToStandardError(const ComMsgMgr::Message& message) {
    std::cerr << ComMsgMgr::format(message) << std::endl;
}

struct Service {
    ComMsgMgr::Sink sink;
    int verbosity = 0;
};

Service& getService() {
    static Service service;
    return service;
}

} // namespace

ComMsgMgrInstance::ComMsgMgrInstance(const char* file, int line, const char* facility, const char* key,
                                     std::vector<std::string> args)
    : m_file(file), m_line(line), m_facility(facility), m_id(idOfKey(key)), m_args(std::move(args)) {}

std::string ComMsgMgrInstance::getMessage() const {
    const std::string* text = ComMsgMgr::findText(m_id);
    return text ? fillIn(*text, m_args) : join(m_args);
}

HEXAll::HEXAll(ComMsgMgrInstance message) : m_message(std::move(message)), m_text(m_message.getMessage()) {}

void ComMsgMgr::send(const ComMsgMgrInstance& message, MsgSeverity severity) {
    if (getVerbosity() < 0) return;
    const CatalogEntry* entry = findEntry(message.getId());
    const Message sent{message.getId(), severity, message.getArgs(), message.getMessage(),
                       labelOf(severity, entry && entry->isGoodNews)};
    // A copy, because a sink may install another one while it runs.
    const Sink sink = getService().sink;
    sink ? sink(sent) : writeToStandardError(sent);
}

ComMsgMgr::Sink ComMsgMgr::setSink(Sink sink) {
    return std::exchange(getService().sink, std::move(sink));
}

std::string ComMsgMgr::format(const Message& message) {
    // Arguments may come from a store: no control sequence of theirs reaches the terminal.
    std::string line = HUTText::printable(message.label + ": [" + message.id + "] " + message.text, true);
    while (line.back() == '\n') line.pop_back();
    // Nor does a line of theirs look like a message of its own.
    for (std::size_t end = line.find('\n'); end != std::string::npos; end = line.find('\n', end + 1))
        line.insert(end + 1, "  ");
    return line;
}

int ComMsgMgr::getVerbosity() {
    return getService().verbosity;
}

void ComMsgMgr::setVerbosity(int verbosity) {
    getService().verbosity = verbosity;
}

const std::string* ComMsgMgr::findText(const std::string& id) {
    const CatalogEntry* entry = findEntry(id);
    return entry ? &entry->text : nullptr;
}
