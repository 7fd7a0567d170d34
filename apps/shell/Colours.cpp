#include "Colours.h"

#include "support/HUTEnv.h"

#include <map>

namespace {

constexpr const char* bad = "\033[1;31m";
constexpr const char* doubtful = "\033[33m";
constexpr const char* calm = "\033[36m";
constexpr const char* plain = "\033[0m";

bool areWelcome() {
    return HUTEnv::getEnv("NO_COLOR").empty() && HUTEnv::getEnv("TERM") != "dumb";
}

} // namespace

Colours::Colours(const std::string& choice, HUTSysCall::Stream stream)
    : m_areShown(choice == "always" || (choice == "auto" && areWelcome() && HUTSysCall::showsColours(stream))) {}

std::string Colours::paint(const std::string& word) const {
    static const std::map<std::string, const char*> colours{{"ERROR", bad},         {"CRITICAL WARNING", bad},
                                                            {"failed", bad},        {"problem", bad},
                                                            {"damaged", bad},       {"WARNING", doubtful},
                                                            {"warning", doubtful},  {"unknown", doubtful},
                                                            {"outdated", doubtful}, {"INFO", calm}};
    const auto colour = colours.find(word);
    return m_areShown && colour != colours.end() ? colour->second + word + plain : word;
}
