#pragma once

#include "support/HostExport.h"

#include <rapidjson/document.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// How much a JSON text may hold. What goes beyond it ends the parsing, before it takes more memory.
struct HCRapidJsonLimits {
    /// Which limit a text goes beyond.
    enum class Excess { none, values, text, name, list, longList };

    static constexpr std::size_t unlimited = static_cast<std::size_t>(-1);
    std::size_t values = unlimited;   ///< values and member names in all
    std::size_t text = unlimited;     ///< bytes of a text
    std::size_t name = unlimited;     ///< bytes of a member's name, and of the texts of members for which isName
    std::size_t list = unlimited;     ///< entries of a list, and members of an object
    std::size_t longList = unlimited; ///< entries of the lists of members for which isLongList
    bool (*isName)(std::string_view member) = [](std::string_view) { return false; };
    bool (*isLongList)(std::string_view member) = [](std::string_view) { return false; };
};

/// A document that keeps why its text was no JSON; see HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument.
class HCRapidJsonDocument : public rapidjson::Document {
public:
    using rapidjson::Document::GenericDocument;

    /// The limit that ended the last parsing.
    HCRapidJsonLimits::Excess getExcess() const { return m_excess; }
    /// Values and member names of the last parsing.
    std::size_t getValueCount() const { return m_valueCount; }

private:
    friend class HCRapidJsonReadWriteUtils;
    std::string m_parseError;
    HCRapidJsonLimits::Excess m_excess = HCRapidJsonLimits::Excess::none;
    std::size_t m_valueCount = 0;
};

/// The host's JSON helpers: forgiving typed access, writing of members, and the reports that every reader shares.
///
/// Getters take any value: one that is not an object, a missing member and a member of another type all read as empty
/// (or false). Reports go to the message service.
class HOST_API HCRapidJsonReadWriteUtils {
public:
    /// Nesting beyond this is refused while parsing, so that no file can exhaust the stack.
    static constexpr std::size_t maxDepth = 256;

    /// Of a text that is no JSON, what stands before the first error, up to the last element of an array that is whole
    /// there, and closed behind it; empty where there is no such element.
    static std::string getReadablePart(const std::string& text);
    /// Parses JSON text in place: @p text is overwritten and must outlive the document. A byte order mark is skipped.
    /// Never recurses; checks UTF-8; refuses nesting deeper than maxDepth.
    /// @return false when the text is not JSON, or goes beyond a limit; @p document is then null and keeps why
    static bool parseInPlace(std::string& text, HCRapidJsonDocument& document, const HCRapidJsonLimits& limits = {});

    static std::string GetStringProperty(const rapidjson::Value& object, const char* key);
    static bool GetBooleanProperty(const rapidjson::Value& object, const char* key);
    /// The strings of an array member; elements of other types are left out.
    static std::vector<std::string> GetStringArrayProperty(const rapidjson::Value& object, const char* key);

    /// The member if it is there and an object (array); else null.
    static const rapidjson::Value* FindObject(const rapidjson::Value& object, const char* key);
    static const rapidjson::Value* FindArray(const rapidjson::Value& object, const char* key);

    static void AddStringProperty(rapidjson::Document& document, rapidjson::Value& object, const char* key,
                                  const std::string& value);
    static void AddBooleanProperty(rapidjson::Document& document, rapidjson::Value& object, const char* key,
                                   bool value);
    static void AddIntegerProperty(rapidjson::Document& document, rapidjson::Value& object, const char* key, int value);
    /// Moves @p value in.
    static void AddGenericValueProperty(rapidjson::Document& document, rapidjson::Value& object, const char* key,
                                        rapidjson::Value& value);

    /// Reason and place ("line 3, column 7: ...") where the text that the document was parsed from last is not JSON;
    /// empty where it is.
    static std::string GetErrorMsgFromDocument(const HCRapidJsonDocument& document);

    /// The document as indented text with a line end, "\n" on every system.
    static std::string toText(const rapidjson::Value& value);

    static void errorReadingJsonFile(const std::string& file);
    static void errorParsingJsonFile(const std::string& file, const std::string& message);
    static void errorReadingSchemaFile(const std::string& file);
    static void errorParsingSchemaFile(const std::string& file, const std::string& message);

    /// Checks that a schema document can be read and parsed; reports what is wrong with it otherwise.
    static bool validateSchemaFile(const std::string& file);
};
