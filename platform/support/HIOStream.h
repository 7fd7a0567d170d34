#pragma once

#include "support/HIOStatus.h"
#include "support/HostExport.h"

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

/// The host's stream library: reads whole files and recognises its own container for protected files.
///
/// A protected file begins with the eight bytes 0x89 'H' 'P' 'F' 0x0D 0x0A 0x1A 0x0A, then
///
///     offset  size  content (numbers are little-endian)
///          8     1  layout version, 1
///          9     3  zero
///         12     4  CRC-32 of the plain content
///         16     8  length of the plain content in bytes
///         24     n  the content, each byte combined by exclusive or with the low byte of a running
///                   key k: k starts as the CRC, and k := k * 1664525 + 1013904223 (mod 2^32) before each byte;
///                   the byte taken is the top one of k
///
/// The container keeps casual eyes and editors out; it is no encryption. Readers see the plain content.
class HOST_API HIOStream {
public:
    using Status = HIOStatus;

    /// Nothing that is read whole comes near this.
    static constexpr std::uint64_t largestFile = std::uint64_t{1} << 30;

    /// A directory kept open, below which files are read by relative names.
    class HOST_API Root {
    public:
        /// @param dir  may be missing; every read then gives `missing`
        explicit Root(const std::string& dir);
        ~Root();
        Root(Root&& other) noexcept;
        Root& operator=(Root&& other) noexcept;
        const std::string& getDir() const { return m_dir; }

        /// Reads a file below the directory; one open, one read. Links are followed as long as they stay inside.
        /// @p content is replaced (its capacity is reused), and empty unless the result is ok. Names that hold a null
        /// character lead to no file.
        /// @param maxSize  of a larger file, in bytes, nothing is read
        Status read(const std::string& relative, std::string& content, std::uint64_t maxSize = largestFile) const;

    private:
        struct Impl;
        std::string m_dir;
        std::unique_ptr<Impl> m_impl;
    };

    /// Reads a whole file into @p content (replaced; its capacity is reused); plain content of a protected file.
    /// @param maxSize  of a larger file, in bytes, nothing is read
    static Status read(const std::string& file, std::string& content, std::uint64_t maxSize = largestFile);
    /// The same of a file that is no link itself; one is unreadable.
    static Status readItself(const std::string& file, std::string& content);
    /// Whether the file begins as a protected file does.
    static bool isContainer(const std::string& file);
    /// Opens a file for text that comes bit by bit; every byte goes into it as it is.
    /// @param mode  std::ios::trunc or std::ios::app
    /// @return not open when that failed, or a link stands there
    static std::ofstream openForWriting(const std::string& file, std::ios::openmode mode);
    /// A protected file's bytes for the plain content.
    static std::string wrap(const std::string& content);
    /// Puts the plain content in the place of a protected file's bytes; those of any other file stay as they are.
    /// @return unreadable where they are damaged
    static Status unwrap(std::string& bytes);
    /// Writes @p content as a protected file, atomically. @return false when that failed
    static bool writeContainer(const std::string& file, const std::string& content);
};
