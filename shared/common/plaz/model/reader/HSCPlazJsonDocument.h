#pragma once

#include "plaz/model/reader/HSCPlazFindings.h"
#include "plaz/model/reader/HSCPlazSchema.h"
#include "support/HCRapidJsonReadWriteUtils.h"
#include "support/HIOStream.h"

#include <memory>
#include <optional>
#include <string>

/// One metadata file at a time, read and parsed: the frame of every reader. One object serves many files; text buffer
/// and memory pool are used again.
class HSCPlazJsonDocument {
public:
    HSCPlazJsonDocument();

    /// Reads and parses a file. One that is missing, not a regular file or unreadable is a finding (false); one that is
    /// no JSON is one too (true), and its root is then null.
    bool load(const std::string& file, HSCPlazFindings& found);
    /// The same of a content that is in memory. @param name  what it is called in findings
    void loadText(std::string text, const std::string& name, HSCPlazFindings& found);
    /// Of a file that is no JSON, what can be read of it; see HCRapidJsonReadWriteUtils::getReadablePart.
    void loadReadablePart(const std::string& file);
    /// The same for a file below a directory held open. A file that is missing or lies outside is no finding: the
    /// caller judges the status.
    HIOStream::Status loadBelow(const HIOStream::Root& root, const std::string& relative, HSCPlazFindings& found);

    /// The file that was asked for last, in canonical form.
    const std::string& getFile() const { return m_file; }
    /// The file was read and is JSON.
    bool isParsed() const { return m_parsed; }
    /// Valid until the next load; null when nothing was parsed.
    const rapidjson::Value& getRoot() const { return m_document; }
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
    void parse(HSCPlazFindings& found);
    HSCPlazSchema* findSchema(HSCPlazSchema::Kind kind, HSCPlazFindings& found);

    struct SchemaKey {
        HSCPlazSchema::Kind kind;
        int major;
        int minor;
    };

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
