#pragma once

#include "support/HostExport.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <vector>

/// How grave a message is. The values are those of the message service's severity word.
enum class MsgSeverity : std::uint32_t {
    fileError = 1,               ///< a file that should be there is not; shown as an error
    fileWarning = 2,             ///< a file that cannot be used; shown as a critical warning
    info = 0x2000000,            ///< good news
    warning = 0x4000000,         ///< worth knowing
    criticalWarning = 0x8000000, ///< part of the work was left out
    error = 0x20000000           ///< the operation failed
};

/// Name of a numbered message: "@group-number@" and one "%s" for each argument it takes.
/// The number of arguments is part of the type, so that a call with too few or too many does not compile.
template <std::size_t Arity> struct MsgId { const char* key; };

/// One message with its arguments: what is sent to the message service or carried by an exception.
class HOST_API ComMsgMgrInstance {
public:
    /// @param file,line  where in the source the message was made
    /// @param facility   message group; "common" for everything that the hub sends
    /// @param id         the message; its text comes from the message catalog
    /// @param args       one per placeholder, in order
    template <std::size_t Arity, typename... Args>
    ComMsgMgrInstance(const char* file, int line, const char* facility, const MsgId<Arity>& id, const Args&... args)
        : ComMsgMgrInstance(file, line, facility, id.key, std::vector<std::string>{std::string(args)...}) {
        static_assert(sizeof...(Args) == Arity, "the message takes another number of arguments");
    }

    /// @param key  "@group-number@..." as a MsgId holds it, for callers that learn the id at run time
    ComMsgMgrInstance(const char* file, int line, const char* facility, const char* key, std::vector<std::string> args);

    /// "17-1567"
    const std::string& getId() const { return m_id; }
    const std::string& getFacility() const { return m_facility; }
    const std::vector<std::string>& getArgs() const { return m_args; }
    const char* getFile() const { return m_file; }
    int getLine() const { return m_line; }

    /// The catalog's text with the arguments put in; for an id without a text, the arguments joined with blanks.
    std::string getMessage() const;

private:
    const char* m_file;
    int m_line;
    std::string m_facility;
    std::string m_id;
    std::vector<std::string> m_args;
};

/// The host's exception: a message that ends the operation.
class HOST_API HEXAll : public std::exception {
public:
    explicit HEXAll(ComMsgMgrInstance message);
    /// The message with its id and arguments.
    const ComMsgMgrInstance& getMsg() const { return m_message; }
    /// The message's text, without its id.
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    ComMsgMgrInstance m_message;
    std::string m_text;
};

/// The host's message service: takes numbered messages, looks their texts up and hands them to a sink.
///
/// The catalog of texts is read once, on first use, from "messages.json" of the shipped data.
/// Not safe to use from several threads at once.
class HOST_API ComMsgMgr {
public:
    /// A message as a sink receives it.
    struct Message {
        std::string id;                ///< "17-1567"
        MsgSeverity severity;          ///< as sent
        std::vector<std::string> args; ///< as sent
        std::string text;              ///< the whole sentence
        std::string label;             ///< "ERROR", "CRITICAL WARNING", "WARNING" or "INFO"
    };
    using Sink = std::function<void(const Message&)>;

    /// Sends a message in the group "common". Nothing happens while the verbosity is negative.
    template <std::size_t Arity, typename... Args>
    static void send(const MsgId<Arity>& id, MsgSeverity severity, const Args&... args) {
        send(ComMsgMgrInstance("", 0, "common", id, args...), severity);
    }
    static void send(const ComMsgMgrInstance& message, MsgSeverity severity);

    /// Sends what an exception carries, as an error.
    static void send(const HEXAll& failure) { send(failure.getMsg(), MsgSeverity::error); }

    /// Installs a receiver and returns the one before; an empty one brings back the default,
    /// which writes "LABEL: [id] text" to standard error.
    static Sink setSink(Sink sink);

    /// "LABEL: [id] text", the form in which people see a message.
    static std::string format(const Message& message);

    /// 0 at first; a negative value silences the service.
    static int getVerbosity();
    static void setVerbosity(int verbosity);

    /// The catalog's text of "17-1567" with a placeholder for each argument: "%s" as it is, "%c" for a command line, of
    /// whose program the folder is left out, "%r" for lines in which a program tells why it failed, "%w" for what could
    /// not be written to, with what stood in the way. Null when there is none.
    static const std::string* findText(const std::string& id);
};
