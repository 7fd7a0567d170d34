#pragma once

#include "plaz/base/HSCPlazLimits.h"
#include "plaz/model/reader/HSCPlazFindings.h"
#include "plaz/model/reader/HSCPlazSchema.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

/// One metadata file at a time, read and parsed: the frame of every reader. One object serves many files; text buffer
/// and memory pool are used again.
class HSCPlazJsonDocument {
public:
    /// @param kind  what the files are, which decides how much they may hold
    explicit HSCPlazJsonDocument(HSCPlazLimits::File kind = HSCPlazLimits::File::list);

    /// Reads and parses a file. One that is missing, not a regular file, unreadable or beyond a limit is a finding
    /// (false); one that is no JSON is one too (true). The root is null where nothing was parsed.
    bool load(const std::string& file, HSCPlazFindings& found);
    /// The same of a content that is in memory. @param name  what it is called in findings
    void loadText(std::string text, const std::string& name, HSCPlazFindings& found);
    /// Of a file that is no JSON, what can be read of it; see HCRapidJsonReadWriteUtils::getReadablePart.
    void loadReadablePart(const std::string& file);
    /// The same for a file below a directory held open. A file that is missing or lies outside is no finding: the
    /// caller judges the status. One beyond a limit is a finding, and `tooLarge`.
    HIOStream::Status loadBelow(const HIOStream::Root& root, const std::string& relative, HSCPlazFindings& found);

    /// The file that was asked for last, in canonical form.
    const std::string& getFile() const { return m_file; }
    /// The file was read and is JSON.
    bool isParsed() const { return m_parsed; }
    /// Valid until the next load; null when nothing was parsed.
    const rapidjson::Value& getRoot() const { return m_document; }
    /// Counts what a description takes that was made of what was read.
    void countMade(std::uint64_t bytes) { m_bytesMade += bytes; }
    /// Whether all files that were read so far, or what was made of them, take more than those of a store's items may
    /// (HSCPlazLimits::describeItemFiles).
    bool isTooMuch() const { return std::max(m_bytesRead, m_bytesMade) > m_limits.getItemFilesSize(); }
    const HSCPlazLimits& getLimits() const { return m_limits; }
    /// Layout version: the top-level "_major" and "_minor", 0 where they are no integers.
    int getMajor() const;
    int getMinor() const;
    /// Finds what stands in their place and is no such integer.
    void checkVersion(HSCPlazFindings& found) const;

    /// Holds the document against the schema of its kind and version when the parameter "plaz.enableSchemaValidation"
    /// is on, and finds the first place that breaks it. Readers go on in any case.
    void validate(HSCPlazSchema::Kind kind, HSCPlazFindings& found);

private:
    void clear();
    /// @return false when the text goes beyond a limit
    bool parse(HSCPlazFindings& found);
    void addUnread(HIOStream::Status status, HSCPlazFindings& found) const;
    HSCPlazSchema* findSchema(HSCPlazSchema::Kind kind, HSCPlazFindings& found);

    struct SchemaKey {
        HSCPlazSchema::Kind kind;
        int major;
        int minor;
    };

    const HSCPlazLimits::File m_kind;
    const HSCPlazLimits m_limits;
    const HCRapidJsonLimits m_jsonLimits;
    std::uint64_t m_bytesRead = 0;
    std::uint64_t m_bytesMade = 0;
    std::string m_file;
    std::string m_text;
    std::unique_ptr<char[]> m_poolStart; // the pool keeps this block between files
    rapidjson::MemoryPoolAllocator<> m_pool;
    HCRapidJsonDocument m_document;
    bool m_parsed = false;
    // What findSchema answered last: files that follow one another are mostly of one kind and version.
    std::optional<SchemaKey> m_schemaKey;
    HSCPlazSchema* m_schema = nullptr;
};
