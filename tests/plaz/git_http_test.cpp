#include "git_fixture.h"

#include "plaz/HSCPlazPathMgr.h"

#include <cstdio>

namespace {

/// A web server on loopback that hands out a directory to one user; ends when the file "stop" appears there.
constexpr const char* serverScript = R"(
import base64, http.server, os, sys
os.chdir(sys.argv[1])
wanted = 'Basic ' + base64.b64encode(b'me@x:s3cr3t/:en').decode()
class Handler(http.server.SimpleHTTPRequestHandler):
    def do_GET(self):
        if self.headers.get('Authorization') == wanted:
            return super().do_GET()
        self.send_response(401)
        self.send_header('WWW-Authenticate', 'Basic realm="x"')
        self.end_headers()
    def log_message(self, *args):
        pass
server = http.server.HTTPServer(('127.0.0.1', 0), Handler)
server.timeout = 0.1
print(server.server_port, flush=True)
while not os.path.exists('stop'):
    server.handle_request()
)";

class GitHttp : public GitTest {
protected:
    GitHttp() {
        remote.write("catalog.json", "1").commit();
        remote.git({"update-server-info"});
        const std::string script = temp.write("server.py", serverScript);
        server = popen(("exec python3 " + script + " " + remote.getDir() + "/.git").c_str(), "r");
        char line[32] = {};
        if (std::fgets(line, sizeof line, server)) port = std::to_string(std::atoi(line));
        for (const char* name : {"http_proxy", "HTTP_PROXY", "ALL_PROXY", "all_proxy"}) env.unset(name);
    }
    ~GitHttp() override {
        temp.write("remote/.git/stop", "");
        pclose(server);
    }
    bool load() { return git.loadCatalog(&model, HSCPlazMgr::getInstance().getPathMgr(), {"catalog.json"}); }

    GitRepo remote{temp.path("remote")};
    FILE* server = nullptr;
    std::string port;
};

// Faults: credentials that do not reach the server, or that git hands on to its helper processes on command lines,
// which every user of the machine can read.
TEST_F(GitHttp, CredentialsReachTheServerAndNoCommandLine) {
    const std::string url = "http://127.0.0.1:" + port + "/";
    model.setUrl(url);
    configure("\"qstores\": [" + repository(url, "me@x", "wrong") + "]");
    EXPECT_EQ(thrownBy([this] { load(); }), "17-1587");
    configure("\"qstores\": [" + repository(url, "me@x", "s3cr3t/:en") + "]");
    replaceGit("GIT_TRACE=" + temp.path("trace") + " exec git \"$@\"");
    ASSERT_TRUE(load());
    EXPECT_EQ(readFile(staging + "/catalog.json"), "1");
    temp.write("area/.plaz/.index/.git/HEAD", remote.git({"rev-parse", "HEAD"}) + "\n");
    EXPECT_EQ(HSCPlazGit::hasUpdate(index, url, "", ""), 0);
    remote.write("catalog.json", "2").commit();
    remote.git({"update-server-info"});
    EXPECT_EQ(HSCPlazGit::hasUpdate(index, url, "", ""), 1);
    ASSERT_TRUE(load());
    EXPECT_EQ(readFile(staging + "/catalog.json"), "2");
    const std::string trace = readFile(temp.path("trace"));
    EXPECT_NE(trace.find("git-remote-http origin " + url), std::string::npos) << trace;
    EXPECT_EQ((trace + takeCalls()).find("s3cr3t"), std::string::npos);
}

} // namespace
