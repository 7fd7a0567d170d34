#pragma once

#include <string>
#include <sys/types.h>

/// git's http-backend behind a web server on loopback, until the end of this object, or of the process, however it
/// ends.
class WebServer {
public:
    /// @param repositories  the directory whose repositories are served
    /// @param dir           for the server's own files; made
    /// @throws std::runtime_error when it does not answer
    WebServer(const std::string& repositories, const std::string& dir);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    std::string getUrl(const std::string& repository) const;

private:
    int m_port;
    pid_t m_pid = -1;
};
