#include "support/HCRapidJsonReadWriteUtils.h"

#include "support/HIOStream.h"
#include "support/HUTText.h"
#include "support/HostMsg.h"

#include <rapidjson/encodedstream.h>
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

using Json = HCRapidJsonReadWriteUtils;
using Excess = HCRapidJsonLimits::Excess;

constexpr unsigned parseFlags =
    rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;

// Stands between the parser and the document: ends the parsing when the nesting gets too deep or a limit is reached,
// and remembers where decoding in place has put line ends into strings, so that lines can still be counted afterwards.
class Guard {
public:
    Guard(rapidjson::Document& document, const HCRapidJsonLimits& limits) : m_document(document), m_limits(limits) {}

    bool isTooDeep() const { return m_depth > Json::maxDepth; }
    Excess getExcess() const { return m_excess; }
    std::size_t getCount() const { return m_count; }
    const std::vector<const char*>& getLineEndsInStrings() const { return m_lineEnds; }

    bool Null() { return count() && m_document.Null(); }
    bool Bool(bool value) { return count() && m_document.Bool(value); }
    bool Int(int value) { return count() && m_document.Int(value); }
    bool Uint(unsigned value) { return count() && m_document.Uint(value); }
    bool Int64(std::int64_t value) { return count() && m_document.Int64(value); }
    bool Uint64(std::uint64_t value) { return count() && m_document.Uint64(value); }
    bool Double(double value) { return count() && m_document.Double(value); }
    bool RawNumber(const char* text, rapidjson::SizeType size, bool copy) {
        return count() && m_document.RawNumber(text, size, copy);
    }
    bool String(const char* text, rapidjson::SizeType size, bool copy) {
        noteLineEnds(text, size);
        return count() && hold(size, m_limits.text, Excess::text) &&
               (size <= m_limits.name || !m_limits.isName(m_key) || stopFor(Excess::name)) &&
               m_document.String(text, size, copy);
    }
    bool Key(const char* text, rapidjson::SizeType size, bool copy) {
        noteLineEnds(text, size);
        m_key = {text, size};
        return count() && hold(size, m_limits.name, Excess::name) && m_document.Key(text, size, copy);
    }
    bool StartObject() { return enter() && m_document.StartObject(); }
    bool EndObject(rapidjson::SizeType members) {
        --m_depth;
        return hold(members, m_limits.list, Excess::list) && m_document.EndObject(members);
    }
    bool StartArray() { return enter() && m_document.StartArray(); }
    bool EndArray(rapidjson::SizeType elements) {
        const std::string_view name = m_listNames[m_depth--];
        const bool isLong = elements > m_limits.list && m_limits.isLongList(name);
        return (isLong ? hold(elements, m_limits.longList, Excess::longList)
                       : hold(elements, m_limits.list, Excess::list)) &&
               m_document.EndArray(elements);
    }

private:
    bool stopFor(Excess excess) {
        m_excess = excess;
        return false;
    }
    bool hold(std::size_t size, std::size_t limit, Excess excess) { return size <= limit || stopFor(excess); }
    bool count() { return hold(++m_count, m_limits.values, Excess::values); }
    bool enter() {
        if (++m_depth > Json::maxDepth) return false;
        m_listNames[m_depth] = m_key;
        return count();
    }
    void noteLineEnds(const char* text, std::size_t size) {
        const char* end = text + size;
        while (const void* found = std::memchr(text, '\n', static_cast<std::size_t>(end - text))) {
            m_lineEnds.push_back(static_cast<const char*>(found));
            text = m_lineEnds.back() + 1;
        }
    }

    rapidjson::Document& m_document;
    const HCRapidJsonLimits& m_limits;
    std::vector<const char*> m_lineEnds;
    std::string_view m_key;                                       // the last member's name
    std::array<std::string_view, Json::maxDepth + 1> m_listNames; // of what is open, by its depth
    std::size_t m_depth = 0;
    std::size_t m_count = 0;
    Excess m_excess = Excess::none;
};

// The parser takes the bytes that a lead byte announces without looking for the end of the text in between.
void padCutOffCharacter(std::string& text) {
    static constexpr std::size_t longestTail = 3;
    const auto tail = text.end() - static_cast<std::ptrdiff_t>(std::min(longestTail, text.size()));
    const auto isLeadByte = [](char c) { return static_cast<unsigned char>(c) >= 0xC0; };
    if (std::any_of(tail, text.end(), isLeadByte)) text.append(longestTail, '\0');
}

std::string describePlace(const char* begin, std::size_t offset, const std::vector<const char*>& lineEndsInStrings) {
    std::size_t line = 1;
    const char* lineBegin = begin;
    for (const char* c = begin; c != begin + offset; ++c) {
        if (*c != '\n' || std::binary_search(lineEndsInStrings.begin(), lineEndsInStrings.end(), c)) continue;
        ++line;
        lineBegin = c + 1;
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(begin + offset - lineBegin + 1) + ": ";
}

const rapidjson::Value* find(const rapidjson::Value& object, const char* key) {
    if (!object.IsObject()) return nullptr;
    const auto member = object.FindMember(key);
    return member == object.MemberEnd() ? nullptr : &member->value;
}

std::string toString(const rapidjson::Value& value) {
    return {value.GetString(), value.GetStringLength()};
}

void add(rapidjson::Document& document, rapidjson::Value& object, const char* key, rapidjson::Value& value) {
    object.AddMember(rapidjson::Value(key, document.GetAllocator()), value, document.GetAllocator());
}

} // namespace

std::string HCRapidJsonReadWriteUtils::getReadablePart(const std::string& text) {
    using Stream = rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream>;
    rapidjson::MemoryStream memory(text.data(), text.size());
    Stream stream(memory);
    rapidjson::BaseReaderHandler<> keepNothing;
    rapidjson::Reader reader;
    const auto result =
        reader.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(stream, keepNothing);
    const std::size_t end = std::min(result.Offset(), text.size());
    std::string open, openAtCut; // the brackets that close what is open
    std::size_t cut = 0;
    bool isInText = false;
    for (std::size_t position = 0; position < end; ++position) {
        const char character = text[position];
        if (character == '\\' && isInText) ++position;
        if (character == '"') isInText = !isInText;
        if (isInText) continue;
        if (character == '{' || character == '[') open.push_back(character == '{' ? '}' : ']');
        if ((character != '}' && character != ']') || open.empty()) continue;
        open.pop_back();
        if (open.empty() || open.back() != ']') continue;
        cut = position + 1;
        openAtCut.assign(open.rbegin(), open.rend());
    }
    return cut == 0 ? std::string() : text.substr(0, cut) + openAtCut;
}

bool HCRapidJsonReadWriteUtils::parseInPlace(std::string& text, HCRapidJsonDocument& document,
                                             const HCRapidJsonLimits& limits) {
    static constexpr const char byteOrderMark[] = "\xEF\xBB\xBF";
    const std::size_t start = text.compare(0, 3, byteOrderMark) == 0 ? 3 : 0;
    const std::size_t size = text.size() - start;
    padCutOffCharacter(text);
    char* begin = text.data() + start;

    rapidjson::InsituStringStream stream(begin);
    Guard guard(document, limits);
    rapidjson::ParseResult result;
    const auto generate = [&](rapidjson::Document&) {
        rapidjson::Reader reader;
        result = reader.Parse<parseFlags>(stream, guard);
        return !result.IsError();
    };
    document.Populate(generate);
    document.m_parseError.clear();
    document.m_excess = guard.getExcess();
    document.m_valueCount = guard.getCount();

    std::string reason;
    if (guard.isTooDeep())
        reason = "Nesting deeper than " + std::to_string(maxDepth) + " levels.";
    else if (guard.getExcess() != Excess::none)
        reason = "More than is taken.";
    else if (result.IsError())
        reason = rapidjson::GetParseError_En(result.Code());
    else if (stream.Tell() < size) // the parser takes a null character for the end
        reason = "Unexpected null character.";
    else
        return true;
    document.m_parseError =
        describePlace(begin, result.IsError() ? result.Offset() : stream.Tell(), guard.getLineEndsInStrings()) +
        HUTText::withoutFullStop(reason); // messages put it inside a sentence
    document.SetNull();
    return false;
}

std::string HCRapidJsonReadWriteUtils::GetStringProperty(const rapidjson::Value& object, const char* key) {
    const rapidjson::Value* value = find(object, key);
    return value && value->IsString() ? toString(*value) : std::string();
}

bool HCRapidJsonReadWriteUtils::GetBooleanProperty(const rapidjson::Value& object, const char* key) {
    const rapidjson::Value* value = find(object, key);
    return value && value->IsTrue();
}

std::vector<std::string> HCRapidJsonReadWriteUtils::GetStringArrayProperty(const rapidjson::Value& object,
                                                                           const char* key) {
    std::vector<std::string> strings;
    if (const rapidjson::Value* array = FindArray(object, key))
        for (const rapidjson::Value& element : array->GetArray())
            if (element.IsString()) strings.push_back(toString(element));
    return strings;
}

const rapidjson::Value* HCRapidJsonReadWriteUtils::FindObject(const rapidjson::Value& object, const char* key) {
    const rapidjson::Value* value = find(object, key);
    return value && value->IsObject() ? value : nullptr;
}

const rapidjson::Value* HCRapidJsonReadWriteUtils::FindArray(const rapidjson::Value& object, const char* key) {
    const rapidjson::Value* value = find(object, key);
    return value && value->IsArray() ? value : nullptr;
}

void HCRapidJsonReadWriteUtils::AddStringProperty(rapidjson::Document& document, rapidjson::Value& object,
                                                  const char* key, const std::string& value) {
    rapidjson::Value text(value.data(), static_cast<rapidjson::SizeType>(value.size()), document.GetAllocator());
    add(document, object, key, text);
}

void HCRapidJsonReadWriteUtils::AddBooleanProperty(rapidjson::Document& document, rapidjson::Value& object,
                                                   const char* key, bool value) {
    rapidjson::Value boolean(value);
    add(document, object, key, boolean);
}

void HCRapidJsonReadWriteUtils::AddIntegerProperty(rapidjson::Document& document, rapidjson::Value& object,
                                                   const char* key, int value) {
    rapidjson::Value number(value);
    add(document, object, key, number);
}

void HCRapidJsonReadWriteUtils::AddGenericValueProperty(rapidjson::Document& document, rapidjson::Value& object,
                                                        const char* key, rapidjson::Value& value) {
    add(document, object, key, value);
}

std::string HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(const HCRapidJsonDocument& document) {
    return document.m_parseError;
}

std::string HCRapidJsonReadWriteUtils::toText(const rapidjson::Value& value) {
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 2);
    value.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

void HCRapidJsonReadWriteUtils::errorReadingJsonFile(const std::string& file) {
    ComMsgMgr::send(HostMsg::jsonFileUnreadable, MsgSeverity::fileError, file);
}

void HCRapidJsonReadWriteUtils::errorParsingJsonFile(const std::string& file, const std::string& message) {
    ComMsgMgr::send(HostMsg::jsonFileUnparsable, MsgSeverity::fileWarning, file, message);
}

void HCRapidJsonReadWriteUtils::errorReadingSchemaFile(const std::string& file) {
    ComMsgMgr::send(HostMsg::schemaFileUnreadable, MsgSeverity::fileError, file);
}

void HCRapidJsonReadWriteUtils::errorParsingSchemaFile(const std::string& file, const std::string& message) {
    ComMsgMgr::send(HostMsg::schemaFileUnparsable, MsgSeverity::fileWarning, file, message);
}

bool HCRapidJsonReadWriteUtils::validateSchemaFile(const std::string& file) {
    std::string text;
    if (HIOStream::read(file, text) != HIOStream::Status::ok) {
        errorReadingSchemaFile(file);
        return false;
    }
    HCRapidJsonDocument document;
    if (!parseInPlace(text, document)) {
        errorParsingSchemaFile(file, GetErrorMsgFromDocument(document));
        return false;
    }
    return true;
}
