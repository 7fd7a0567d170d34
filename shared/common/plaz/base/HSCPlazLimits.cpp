#include "plaz/base/HSCPlazLimits.h"

#include "support/HPAParamMgr.h"

#include <limits>

namespace {

using Excess = HCRapidJsonLimits::Excess;

/// A parameter, and of how many bytes or entries its unit is.
struct Limit {
    const char* name;
    const char* description;
    int standard;
    std::uint64_t unit;
};

constexpr Limit listFile{"plaz.maxFileSize", "Largest file, in MB, that lists stores or items (default: 128)", 128,
                         std::uint64_t{1} << 20};
constexpr Limit itemFile{"plaz.maxItemFileSize", "Largest file, in KB, that describes one item (default: 1024)", 1024,
                         std::uint64_t{1} << 10};
constexpr Limit items{"plaz.maxItems", "Most items of a store (default: 500000)", 500000, 1};
constexpr Limit listEntries{"plaz.maxListLength", "Most entries of any other list (default: 10000)", 10000, 1};
constexpr Limit textLength{"plaz.maxTextLength", "Longest text, in bytes, of a metadata file (default: 65536)", 65536,
                           1};
constexpr Limit nameLength{"plaz.maxNameLength", "Longest name or path, in bytes, of a metadata file (default: 1000)",
                           1000, 1};

// What is worth no parameter of its own. An honest value takes about as many bytes, with the name of its member.
constexpr std::uint64_t bytesOfValue = 16;
constexpr std::uint64_t revisionsOfItem = 4;
constexpr std::uint64_t itemFilesOfFile = 4;

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

std::uint64_t times(std::uint64_t limit, std::uint64_t factor) {
    return limit > unlimited / factor ? unlimited : limit * factor;
}

std::uint64_t get(const Limit& limit) {
    const int value = HPAParamMgr::getParamMgr().getValueAsInt(limit.name);
    return value > 0 ? static_cast<std::uint64_t>(value) * limit.unit : unlimited;
}

std::string named(const std::string& text, const Limit& limit) {
    return text + " the limit of \"" + limit.name + '"';
}

std::string inUnits(std::uint64_t bytes, const Limit& limit) {
    return std::to_string(bytes / limit.unit) + (limit.unit == listFile.unit ? " MB" : " KB");
}

} // namespace

void HSCPlazLimits::registerParams(HPAParamMgr& params) {
    for (const Limit* limit : {&listFile, &itemFile, &items, &listEntries, &textLength, &nameLength}) {
        params.registerIntParam(limit->name, limit->description, limit->standard);
        params.setHidden(limit->name, true);
    }
}

HSCPlazLimits::HSCPlazLimits()
    : m_listFile(get(listFile)), m_itemFile(get(itemFile)), m_items(get(items)), m_listEntries(get(listEntries)),
      m_text(get(textLength)), m_name(get(nameLength)) {}

std::uint64_t HSCPlazLimits::getItemFilesSize() const {
    return times(m_listFile, itemFilesOfFile);
}

std::size_t HSCPlazLimits::getRevisionCount() const {
    return times(m_items, revisionsOfItem);
}

HCRapidJsonLimits HSCPlazLimits::getJson(File kind) const {
    HCRapidJsonLimits json;
    json.values = getFileSize(kind) / bytesOfValue;
    json.text = m_text;
    json.name = m_name;
    json.list = m_listEntries;
    json.longList = m_items;
    return json;
}

std::string HSCPlazLimits::describeFile(File kind) const {
    const Limit& limit = kind == File::list ? listFile : itemFile;
    return named("it is larger than " + inUnits(getFileSize(kind), limit) + ",", limit);
}

std::string HSCPlazLimits::describeItemFiles() const {
    return named("with it the descriptions of the store's items take more than " +
                     inUnits(getItemFilesSize(), listFile) + ", " + std::to_string(itemFilesOfFile) + " times",
                 listFile) +
           ", so it and those behind it are left out";
}

std::string HSCPlazLimits::describeItems() const {
    return named("it has more than " + std::to_string(m_items) + " items,", items);
}

std::string HSCPlazLimits::describeRevisions() const {
    return named("it lists more than " + std::to_string(getRevisionCount()) + " revisions, " +
                     std::to_string(revisionsOfItem) + " times",
                 items);
}

std::string HSCPlazLimits::describe(Excess excess, File kind) const {
    const Limit& file = kind == File::list ? listFile : itemFile;
    switch (excess) {
    case Excess::values:
        return named("it holds more than " + std::to_string(getFileSize(kind) / bytesOfValue) + " values, one for " +
                         std::to_string(bytesOfValue) + " bytes of",
                     file);
    case Excess::text:
        return named("a text in it is longer than " + std::to_string(m_text) + " bytes,", textLength);
    case Excess::name:
        return named("a name in it is longer than " + std::to_string(m_name) + " bytes,", nameLength);
    case Excess::list:
        return named("a list in it has more than " + std::to_string(m_listEntries) + " entries,", listEntries);
    case Excess::longList:
        return describeItems();
    case Excess::none:
        break;
    }
    return {};
}
