#pragma once

#include "support/HIOStream.h"
#include "support/HUTFile.h"
#include "support/HUTFileTree.h"

#include <string>
#include <utility>

/// The file of a fixed name into which a command writes what it has to say: nothing stands there before, be it a link
/// that somebody else has laid, and nothing behind.
class HSCPlazGitOutput {
public:
    explicit HSCPlazGitOutput(std::string name) : m_name(std::move(name)) { clear(m_name); }
    ~HSCPlazGitOutput() { clear(m_name); }
    HSCPlazGitOutput(const HSCPlazGitOutput&) = delete;
    HSCPlazGitOutput& operator=(const HSCPlazGitOutput&) = delete;

    const std::string& getName() const { return m_name; }
    std::string read() const {
        std::string text;
        HIOStream::readItself(m_name, text);
        return text;
    }

    static void clear(const std::string& name) {
        if (HUTFile::isRegularFile(name) || HUTFileTree::isLink(name)) HUTFile::rmRecursive(name);
    }

private:
    std::string m_name;
};
