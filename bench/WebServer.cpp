#include "WebServer.h"

#include "BenchData.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<in_port_t>(port));
    return address;
}

class Socket {
public:
    ~Socket() { close(m_fd); }
    Socket() = default;
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

int findFreePort() {
    const Socket probe;
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (bind(probe.get(), reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        getsockname(probe.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("no port is free");
    return ntohs(address.sin_port);
}

bool answers(int port) {
    const Socket client;
    const sockaddr_in address = loopback(port);
    return connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

std::string outputOf(const std::string& command) {
    std::FILE* pipe = popen(command.c_str(), "r");
    char line[512] = {};
    if (!pipe || std::fscanf(pipe, "%511s", line) != 1) throw std::runtime_error(command + " failed");
    pclose(pipe);
    return line;
}

std::string configuration(const std::string& repositories, const std::string& dir, int port) {
    return "server.document-root = \"" + dir + "\"\nserver.errorlog = \"" + dir +
           "/log\"\nserver.bind = \"127.0.0.1\"\nserver.port = " + std::to_string(port) +
           "\nserver.modules = (\"mod_alias\", \"mod_cgi\", \"mod_setenv\")\n"
           "alias.url = (\"/git\" => \"" +
           outputOf("git --exec-path") +
           "/git-http-backend\")\ncgi.assign = (\"\" => \"\")\n"
           "setenv.set-environment = (\"GIT_PROJECT_ROOT\" => \"" +
           repositories + "\", \"GIT_HTTP_EXPORT_ALL\" => \"1\")\n";
}

} // namespace

WebServer::WebServer(const std::string& repositories, const std::string& dir) : m_port(findFreePort()) {
    const std::string config = dir + "/lighttpd.conf";
    BenchData::writeFile(config, configuration(repositories, dir, m_port));
    m_pid = fork();
    if (m_pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        execl("/usr/sbin/lighttpd", "lighttpd", "-D", "-f", config.c_str(), nullptr);
        _exit(127);
    }
    for (int attempt = 0; attempt < 1000 && waitpid(m_pid, nullptr, WNOHANG) == 0; ++attempt) {
        if (answers(m_port)) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("lighttpd does not answer: run scripts/setup");
}

WebServer::~WebServer() {
    kill(m_pid, SIGTERM);
    waitpid(m_pid, nullptr, 0);
}

std::string WebServer::getUrl(const std::string& repository) const {
    return "http://127.0.0.1:" + std::to_string(m_port) + "/git/" + repository;
}
