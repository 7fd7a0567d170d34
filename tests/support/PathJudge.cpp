#include "support/PathJudge.h"

#include "support/HUTText.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>
#include <vector>

namespace {

using Text = std::u32string;

Text raised(Text text) {
    // The capitals of other letters are never ASCII to Windows, so no other letter stands for one in its own names.
    for (char32_t& c : text)
        if (c >= 'a' && c <= 'z') c -= 'a' - 'A';
    return text;
}

std::vector<Text> split(const Text& path, const char32_t* separators) {
    std::vector<Text> parts(1);
    for (const char32_t c : path) {
        if (Text(separators).find(c) == Text::npos)
            parts.back() += c;
        else
            parts.emplace_back();
    }
    return parts;
}

/// The names that are left when "." and ".." have done what they say. @return false for one that leaves
bool walk(const std::vector<Text>& parts, std::vector<Text>& names) {
    for (const Text& part : parts) {
        if (part.empty() || part == U".") continue;
        if (part != U"..")
            names.push_back(part);
        else if (names.empty())
            return false;
        else
            names.pop_back();
    }
    return true;
}

/// Windows opens a device for these in any directory, whatever follows the first point.
bool isDevice(const Text& name) {
    static const std::set<Text> devices = [] {
        std::set<Text> all{U"CON", U"PRN", U"AUX", U"NUL", U"CONIN$", U"CONOUT$"};
        for (const char32_t digit : Text(U"0123456789\u00B9\u00B2\u00B3"))
            for (const char32_t* port : {U"COM", U"LPT"}) all.insert(Text(port) + digit);
        return all;
    }();
    Text stem = name.substr(0, name.find_first_of(U".:"));
    while (!stem.empty() && stem.back() == ' ') stem.pop_back();
    return devices.count(raised(stem)) != 0;
}

/// Eight characters, a point and three: what a disk gives to files with a longer name ends in "~" and a number.
bool isShortName(const Text& name) {
    const std::vector<Text> parts = split(name, U".");
    const std::size_t tilde = parts.front().rfind('~');
    if (parts.size() > 2 || parts.back().size() > (parts.size() == 1 ? 8 : 3)) return false;
    if (parts.front().size() > 8 || tilde == Text::npos || tilde + 1 == parts.front().size()) return false;
    return parts.front().find_first_not_of(U"0123456789", tilde + 1) == Text::npos;
}

std::string findOnWindows(const Text& path) {
    if (path.find_first_of(U"/\\") == 0) return "begins at a root or a server";
    if (path.find(':') != Text::npos) return "names a drive or a stream";
    if (path.find(HUTText::replacement) != Text::npos) return "is no text, so it becomes another name";
    std::vector<Text> names;
    if (!walk(split(path, U"/\\"), names)) return "leads out";
    if (names.empty()) return "leads nowhere";
    const auto endsOddly = [](const Text& name) { return name.back() == '.' || name.back() == ' '; };
    if (std::any_of(names.begin(), names.end(), endsOddly)) return "loses points and blanks";
    if (std::any_of(names.begin(), names.end(), isDevice)) return "is a device";
    if (std::any_of(names.begin(), names.end(), isShortName)) return "is a short name";
    const auto isGit = [](const Text& name) { return raised(name) == U".GIT"; };
    const Text top = raised(names.front());
    if (std::any_of(names.begin(), names.end(), isGit)) return "is git's";
    return top == U".PLAZ" || top == U".STAGING" || top == U".DONE" ? "is the hub's" : "";
}

std::string findOnLinux(const Text& path) {
    std::vector<Text> names;
    if (path.find(U'\0') != Text::npos) return "ends early";
    if (path.find('/') == 0) return "begins at the root";
    if (!walk(split(path, U"/"), names)) return "leads out";
    if (names.empty()) return "leads nowhere";
    if (std::find(names.begin(), names.end(), U".git") != names.end()) return "is git's";
    const Text& top = names.front();
    return top == U".plaz" || top == U".staging" || top == U".done" ? "is the hub's" : "";
}

std::vector<std::string> takeApart(const std::string& list) {
    std::vector<std::string> names;
    std::istringstream stream(list);
    for (std::string name; std::getline(stream, name, '|');) names.push_back(name);
    return names;
}

} // namespace

std::string PathJudge::findEscape(const std::string& path) {
    const Text text = HUTText::decode(path);
    const std::string escape = findOnLinux(text);
    return escape.empty() ? findOnWindows(text) : escape;
}

std::string PathJudge::makeNasty(std::minstd_rand& random) {
    using namespace std::string_literals;
    static const auto plain = takeApart("boards|aurora|2.0|a|x.git|Gr\u00FC\u00DFe|~1a|..c");
    static const auto nasty = takeApart(
        "..|.||...|x.|x |. .|aux|NUL.txt|com1 .x|COM\u00B2|lpt0|conin$|ConOut$.a.b| con|PLAZ~1|plaz~12.ext|"
        "\u00C4\u00D6\u00DC\u00DF\u00E9\u00EA~1|GI7EBA~1|a~1.long|a:b|a::$DATA|.git::$INDEX_ALLOCATION|\\|..\\..|C:|"
        "//server/share|\\\\?\\C:|.git|.GIT|.git |.g\u0131t|.\u017Ftaging|.g\u200Cit|git~1|.plaz|.Plaz|.staging|"
        ".STAGING.|.done|\x01|a\nb|\x7F|a\0b|\xC3|\xED\xA0\x80|\xF0\x9F\x92\xA1|\xC0\xAF|e\u0301|\uFF0E\uFF0E|\u2215|"
        "-x|~|*?|"s +
        std::string(300, 'y') + "|" + std::string(90, '.'));
    const auto pick = [&](const auto& texts) { return texts[random() / 7 % std::size(texts)]; };
    std::string path;
    for (auto left = random() / 7 % 4;; --left) {
        path += random() / 7 % 3 == 0 ? pick(nasty) : pick(plain);
        if (left == 0) return path;
        path += random() / 7 % 16 == 0 ? "\\" : "/";
    }
}
