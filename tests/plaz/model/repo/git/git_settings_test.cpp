#include "plaz/model/repo/git/git_fixture.h"
#include "support/HCCXPrefMgr.h"

namespace {

constexpr const char* realGit = "exec git \"$@\"";

using GitSettings = GitRemoteTest;

// Faults: another product's proxy, detection for the wrong protocol, over a given proxy or at each refresh, a working
// copy that keeps a proxy which is no longer chosen, a helper's log left behind.
TEST_F(GitSettings, WorkingCopyRecordsTheProxyInForce) {
    env.set("GDA_APPROOT", temp.makeDir("app/share"));
    replaceGit(realGit);
    writeScript("Solvan/2024.2/tps/win64/git-2.45.0/cmd/git.exe",
                "echo \"$*\" >> " + temp.path("calls") + "\n" + realGit);
    writeScript("Solvan/2024.2/bin/zenproxy.exe", "exit 1");
    HCCXPrefMgr::getInstance().getDefaultXPref().setVal("plaz.http_proxy", {"preferred:1", "other"});
    const std::string secret = "http://u:s3cr3t@c:3";
    const std::tuple<const char*, std::string, const char*, const char*, Names, bool> cases[] = {
        {"Solvan", "", "", "", {}, true},
        {"Solvan", "", "", "none", {}, false},
        {"Solvan", "a:1", "b:2", "none", {"a:1", "b:2"}, true},
        {"Solvan", "a:1", "b:2", "none", {"a:1", "b:2"}, false},
        {"Solvan", "a:1", "", "none", {"a:1"}, true},
        {"solvan", "", "b:2", "found", {"found:8080", "b:2"}, true},
        {"Solvan", "", "b:2", "other", {"found:8080", "b:2"}, false},
        {"Solvan", secret, "", "none", {secret}, true},
        {"Solvan", secret, "", "none", {secret}, false},
        {"kvq", "a:1", "b:2", "none", {"preferred:1"}, true},
        {"other", "a:1", "b:2", "none", {}, true}};
    for (const auto& [product, http, https, detected, recorded, isChanged] : cases) {
        SCOPED_TRACE(filled("% % % %", {product, http, https, detected}));
        env.set("GDA_PRODUCT_NAME", product);
        setParam("plaz.http_proxy", http);
        setParam("plaz.https_proxy", https);
        writeScript("app/share/bin/zenproxy.exe",
                    "echo .proxy >> " + temp.path("calls") + "; [ $1 = -exec ] && echo Proxy=" + detected);
        EXPECT_TRUE(load(model));
        EXPECT_EQ(recordedProxies(), recorded);
        const std::string calls = takeCalls();
        EXPECT_EQ(calls.find(".proxy") != std::string::npos, isChanged);
        EXPECT_EQ(calls.find("s3cr3t"), std::string::npos);
        EXPECT_FALSE(HUTFile::exists(index + "/proxy.txt"));
    }
    HCCXPrefMgr::getInstance().getDefaultXPref().setVal("plaz.http_proxy", {});
    EXPECT_EQ(takeIds(), Names{});
}

// Faults: settings for a directory without a repository, a bundle that is not there, a helper that is still asked.
TEST_F(GitSettings, CertificatesAndHelperAreRecorded) {
    replaceGit(realGit);
    const std::string dir = remote.getDir();
    for (const std::string& other : {temp.makeDir("plain"), dir}) HSCPlazGit::setSslCaInfo(other);
    setParam("plaz.enableGitAccess", "false");
    HSCPlazGit::config_credential_helper(dir);
    EXPECT_EQ(takeCalls(), "");
    setParam("plaz.enableGitAccess", "true");
    const std::string bundle = temp.write("tps/win64/git-2.45.0/mingw64/etc/ssl/certs/ca-bundle.crt", "");
    HSCPlazGit::setSslCaInfo(dir);
    HSCPlazGit::config_credential_helper(dir);
    EXPECT_NE(config(dir).find("sslcainfo = " + test_system::toShellName(bundle) + "\n[credential]\n\thelper = \n"),
              std::string::npos);
}

} // namespace
