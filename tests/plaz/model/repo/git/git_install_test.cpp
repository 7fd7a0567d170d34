#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/repo/git/HSCPlazGitConfigText.h"
#include "plaz/model/repo/git/HSCPlazGitInstall.h"
#include "plaz/model/repo/git/HSCPlazGitTree.h"
#include "plaz/model/repo/git/git_fixture.h"

#include <boost/algorithm/string/replace.hpp>

#include <filesystem>
#include <fstream>

namespace {

struct Item : HSCPlazQItemModel {
    explicit Item(const std::string& commit, const std::string& root = "boards/a") {
        setName("a");
        setStoreName("store");
        setRoot(root);
        setMetadataFile("item.json");
        setCommitId(commit);
    }
};

class GitInstall : public GitRemoteTest {
protected:
    GitInstall() {
        remote.write("boards/a/.done", "x"); // named like the hub's own marker
        first =
            remote.write("boards/a/item.json", "{\"v\": 1}").write("boards/a/old", "x").write("other", "x").commit();
        HUTFile::rmRecursive(remote.getDir() + "/boards/a/old");
        second = remote.write("boards/a/item.json", "{\"v\": 2}").commit();
    }
    ~GitInstall() override {
        EXPECT_FALSE(HUTFile::exists(staging));
        EXPECT_FALSE(HUTFile::exists(temp.path("area/.plaz/.incoming")));
    }
    bool install(const std::string& commit, const std::string& root = "boards/a", const std::string& revision = "") {
        Item item(commit, root);
        item.setRevision(revision);
        return git.install(&hub, &item);
    }
    std::string installed(const std::string& file) const { return readFile(temp.path("area/" + file)); }
    /// What else may become of it: git checks out what is left, and says that it has done so.
    void loseOldFile() const {
        const std::string dir = test_system::toShellName(index + "/.git");
        writeScript("lose", "cd " + dir +
                                "/objects && mv pack/*.pack . && rm -f pack/* && for p in *.pack; do git -C .. " +
                                "unpack-objects -q < $p; done; rm -f *.pack $(git -C .. rev-parse " + first +
                                ":boards/a/old | sed 's,..,&/,')");
        HUTFork lose;
        lose.setProg(temp.path("lose"), false);
        ASSERT_EQ(lose.launch(true, true, true, true), 0);
    }
    Names list(const std::string& dir) const { return HUTFile::createFileIter(temp.path(dir)); }
    std::string first, second;
};

// Fault: an item without a revision takes the revisions beside it with it; files that are not the item's are placed.
TEST_F(GitInstall, OtherRevisionsStay) {
    model.setIsMultiRevisionSupported(true);
    ASSERT_TRUE(install(first, "boards/a", "1.0") && install(second));
    EXPECT_EQ(installed("boards/a/1.0/item.json"), "{\"v\": 1}");
    EXPECT_EQ(installed("boards/a/item.json"), "{\"v\": 2}");
    EXPECT_EQ(list("area/boards/a/1.0"), (Names{"item.json", "old"}));
    EXPECT_EQ(list("area"), (Names{".plaz", "boards"}));
}

// Faults: a process that need not be; the network for what is there already; a stale working copy that blocks; another
// proxy than that of the last refresh.
TEST_F(GitInstall, CompleteWorkingCopyIsFetchedOnlyForAMissingCommit) {
    setParam("plaz.http_proxy", "then:1");
    ASSERT_TRUE(install(first));
    setParam("plaz.http_proxy", "now:1");
    replaceGit(R"(exec git "$@")");
    ASSERT_TRUE(install(second));
    EXPECT_EQ(takeCalls(), "config --replace-all core.sparsecheckout true\nconfig --replace-all http.sslVerify false\n"
                           "checkout " +
                               second + "\nconfig --replace-all http.sslVerify true\n");
    EXPECT_EQ(readFile(index + "/.git/config").find("sparsecheckout"), std::string::npos) << "files linked, not shared";
    EXPECT_TRUE(install(remote.write("boards/a/item.json", "{\"v\": 3}").commit()));
    EXPECT_EQ(installed("boards/a/item.json"), "{\"v\": 3}");
    EXPECT_EQ(recordedProxies(), Names{"then:1"});
    EXPECT_EQ(takeIds(), Names{}) << "nobody is told of an attempt that was made good";
}

// Faults: what somebody has left in a working copy is installed; files are written to where it says.
TEST_F(GitInstall, WorkingCopyCountsByItsCommitsAlone) {
    ASSERT_TRUE(install(first));
    const auto run = [&](const Names& args) { EXPECT_EQ(HSCPlazGitRunner::ask(args, index).status, 0); };
    run({"checkout", first});
    writeFile(index + "/boards/a/item.json", "{}");
    writeFile(index + "/boards/a/more", "x");
    run({"add", "boards"});
    ASSERT_TRUE(install(first));
    EXPECT_EQ(installed("boards/a/item.json"), "{\"v\": 1}");
    EXPECT_EQ(list("area/boards/a"), (Names{"item.json", "old"}));
    run({"config", "core.worktree", temp.makeDir("elsewhere")});
    EXPECT_TRUE(install(second));
    EXPECT_EQ(list("elsewhere"), Names{});
}

// Fault: what another user has prepared in a working copy runs as whoever uses it.
TEST_F(GitInstall, WorkingCopyOfAnotherIsMadeAfreshBeforeGitRuns) {
    writeScript("evil", "touch " + temp.path("ran"));
    const std::string evil = test_system::toShellName(temp.path("evil")), repository = index + "/.git";
    const std::string section = "[remote \"origin\"]\n\tuploadpack = " + evil;
    const auto give = [](const std::string& path) { return test_system::giveAway(path); };
    const auto move = [&](const std::string& from, const std::string& to) {
        return HUTFile::rename(from, to) && !writeFile(to + "/config", section).empty();
    };
    const auto leave = [&](const char* file, const std::string& text) {
        return !writeFile(repository + file, text).empty();
    };
    const auto set = [&](const std::string& text) {
        std::ofstream(repository + "/config", std::ios::app) << text << "\n";
        return true;
    };
    const std::pair<const char*, std::function<bool()>> cases[] = {
        {"another program asked for", [&] { return set(section); }},
        {"two remotes", [&] { return set("[remote \"origin\"]\n\turl = ../../../remote"); }},
        {"at each look at a file", [&] { return set("[core]\n\tfsmonitor = " + evil); }},
        {"asked for passwords", [&] { return set("[credential]\n\thelper = !" + evil); }},
        {"settings beside",
         [&] { return set("[extensions]\n\tworktreeConfig = true") && leave("/config.worktree", section); }},
        {"settings elsewhere", [&] { return leave("/commondir", temp.path("elsewhere")); }},
        {"objects elsewhere", [&] { return leave("/objects/info/alternates", remote.getDir()); }},
        {"all of it elsewhere",
         [&] { return move(repository, temp.path("elsewhere")) && leave("", "gitdir: " + temp.path("elsewhere")); }},
        {"in the open", [&] { return move(repository, index + "/x") && move(index + "/x", index + "2"); }},
        {"not to be read", [&] { return set("[remote"); }},
        {"another's configuration", [&] { return give(repository + "/config"); }},
        {"another's repository", [&] { return give(repository); }},
        {"another's directory", [&] { return give(index); }},
        {"open to all", [&] { return test_system::openToAll(repository); }}};
    replaceGit(R"(exec git "$@")");
    for (const auto& [what, prepare] : cases) {
        SCOPED_TRACE(what);
        ASSERT_TRUE(install(second)) << "nothing of the last case is left";
        takeIds();
        if (!prepare()) continue;
        if (!HUTFile::exists(repository)) {
            HUTFile::rmRecursive(index);
            HUTFile::rename(index + "2", index);
            writeFile(index + "/.done", "");
        }
        if (std::string(what) != "open to all") {
            takeCalls();
            EXPECT_EQ(git.hasUpdate(index, remote.getDir(), "p:1", "master"), 0);
            EXPECT_NE(HSCPlazGitTree::list(context.getWorkLayout(model), first, "boards").status, 0);
            EXPECT_EQ(thrownBy([&] { git.exec_git({"fetch"}, index, false, ""); }), "17-2266");
            EXPECT_EQ(takeCalls(), "");
        }
        model.setUrl("");
        EXPECT_EQ(outcome(install(first)), "! 17-2266");
        model.setUrl(remote.getDir());
        EXPECT_EQ(outcome(install(first)), " 17-2265");
        EXPECT_FALSE(HUTFile::exists(temp.path("ran")));
    }
}

// Fault: a configuration that is read in another way than git reads it.
TEST_F(GitInstall, ConfigurationIsReadAsGitReadsIt) {
    for (const std::string text : {"[a]\nb=c\n[A \"X y\\\"\\z\"] D-1 = \" e ; \" f\\tg # h\\\n\ti\n",
                                   "[a.B.c]\r\n\td\r\n;\n[e] f = g\\\r\n h \\\n",
                                   "[a] b = \"c\\\n[d]\"\n",
                                   "[a]\n b",
                                   "[a\n]",
                                   "[a b]",
                                   "[a \"b\\\n\"]",
                                   "[a \"b\" ]",
                                   "[a] b c",
                                   "[a] 1 = b",
                                   "[a] b = \"c\n",
                                   "[a] b = \\c",
                                   "[a_b] c",
                                   "[a]\n= b",
                                   "[]\nb = c",
                                   "[a] b =\n[c] [d] e",
                                   "",
                                   "b = c",
                                   "[a",
                                   "\xef\xbb\xbf[a] b"}) {
        SCOPED_TRACE(text);
        std::string theirs, ours;
        try {
            theirs = remote.git({"config", "--list", "-z", "--file", temp.write("config", text)});
        } catch (const std::runtime_error&) {
            theirs = "refused";
        }
        const auto entries = HSCPlazGitConfigText::parse(text);
        if (!entries) ours = "refused";
        for (const auto& entry : entries.value_or(std::vector<HSCPlazGitConfigText::Entry>()))
            ours += entry.key + (entry.value ? "\n" + *entry.value : "") + '\0';
        EXPECT_EQ(ours, theirs);
    }
}

// Faults: an index that is read in another way than git reads it; one that cannot be read taken for an empty folder.
TEST_F(GitInstall, IndexListsAsGitDoes) {
    const std::string dir = remote.write("boards/a/sub/\xc3\xa4 b", "1").write("boards/ab", "2").getDir();
    std::filesystem::permissions(dir + "/boards/a/item.json", std::filesystem::perms::owner_exec,
                                 std::filesystem::perm_options::add);
    remote.write("boards/a/" + std::string(150, 'x') + "/" + std::string(200, 'y'), "3").commit();
    const auto readIndex = [&] { return readFile(dir + "/.git/index"); };
    const auto run = [&](const Names& args) { EXPECT_EQ(HSCPlazGitRunner::ask(args, dir).status, 0); };
    for (const std::string root : {"boards/a", "boards", ""}) {
        Names command{"ls-tree", "-r", "-z", "HEAD"};
        if (!root.empty()) command.push_back(root);
        EXPECT_EQ(HSCPlazGitTree::listIndex(readIndex(), root), HSCPlazGitRunner::ask(command, dir).text);
    }
    const std::string listing = HSCPlazGitTree::listIndex(readIndex(), "boards/a");
    run({"update-index", "--skip-worktree", "boards/ab", "boards/a/item.json"}); // the third version, as in a checkout
    EXPECT_EQ(HSCPlazGitTree::listIndex(readIndex(), "boards/a"), listing);
    const std::string whole = readIndex();
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{11}, std::size_t{12}, std::size_t{300}, whole.size() - 1})
        EXPECT_EQ(HSCPlazGitTree::listIndex(whole.substr(0, size), "boards/a"), "") << size;
    run({"update-index", "--index-version", "4"});
    EXPECT_EQ(HSCPlazGitTree::listIndex(readIndex(), "boards/a"), "") << "names that are told in parts";
    const std::string inParts = boost::algorithm::replace_last_copy(whole, "TREE", "link");
    ASSERT_NE(inParts, whole);
    EXPECT_EQ(HSCPlazGitTree::listIndex(inParts, "boards/a"), "") << "most of it stands in another file";
}

// Faults: noise or a long search for a commit that is nowhere; damage that nothing mends; an item without a file that
// cannot be read; either costs what is installed.
TEST_F(GitInstall, LostCommitIsToldAndDamageIsMended) {
    ASSERT_TRUE(install(first));
    remote.git({"reset", "--hard", first});
    const std::string packs = index + "/.git/objects/pack";
    const std::tuple<const char*, std::function<void()>, std::string, bool, bool> cases[] = {
        {"never there", [] {}, std::string(40, '1'), false, false},
        {"never there, shortened", [] {}, "1111111", false, false},
        {"gone from the remote, still here", [] {}, second, true, false},
        {"packs lost", [&] { HUTFile::rmRecursive(packs); }, first, true, true},
        {"gone with the old working copy", [] {}, second, false, false},
        {"one file lost", [&] { loseOldFile(); }, first, true, true},
        {"pack emptied", [&] { emptyPacks(); }, first, true, true}};
    replaceGit(R"(exec git "$@")");
    for (const auto& [what, change, commit, isPlaced, isSearched] : cases) {
        SCOPED_TRACE(what);
        change();
        EXPECT_EQ(install(commit), isPlaced);
        EXPECT_EQ(takeIds(), isPlaced ? Names{} : Names{"17-2173"});
        EXPECT_EQ(takeCalls().find("fsck") != std::string::npos, isSearched);
        EXPECT_EQ(installed("boards/a/old"), installed("boards/a/item.json") == "{\"v\": 1}" ? "x" : "");
    }
    loseOldFile();
    const HSCPlazGitOutcome local =
        HSCPlazGitInstall::install(HSCPlazGitStore::of(model, context.getWorkLayout(model), nullptr), Item(first),
                                   {temp.path("area/boards/a"), temp.path("area/.plaz/.incoming"), true});
    ASSERT_EQ(local.report.getNotes().size(), 1U);
    EXPECT_EQ(local.report.getNotes().front().message.getId(), "17-2361");
    EXPECT_EQ(installed("boards/a/old"), "x");
}

// Fault: names from a catalog reach git, or lead out of the store's area or into the hub's own directories; a branch is
// installed as it is that day.
TEST_F(GitInstall, UnsafeItemIsRefusedBeforeGitRuns) {
    Names roots{"../../x", ".staging", ""};
    if (test_system::makeLink(temp.makeDir("outside"), temp.path("area/link"))) roots.emplace_back("link/x");
    for (const std::string& root : roots) {
        SCOPED_TRACE(root);
        EXPECT_EQ(thrownBy([&] { EXPECT_FALSE(install(first, root)); }), "nothing");
        EXPECT_EQ(takeIds(), Names{"17-2160"});
    }
    EXPECT_EQ(outcome(install("--detach") || install("master") || install("")), "! 17-2160 17-2160 17-1579");
    model.setUrl("ext::sh -c touch% pwned");
    EXPECT_FALSE(install(first));
    setParam("plaz.enableRemoteAccess", "false");
    EXPECT_EQ(outcome(install(first)), "! 17-2161 17-1559");
    EXPECT_FALSE(HUTFile::exists(index));
    EXPECT_EQ(list("outside"), Names{});
}

// Fault: what cannot be trusted replaces what works, or a link in the repository leads the copy elsewhere.
TEST_F(GitInstall, InvalidItemLeavesTheOldInstallation) {
    ASSERT_TRUE(install(second));
    const std::string broken = remote.write("boards/a/item.json", "{").commit();
    temp.makeDir("outside");
    writeScript("make-link", "ln -s " + temp.path("outside") + " " + remote.getDir() + "/way");
    HUTFork link;
    link.setProg(temp.path("make-link"), false);
    ASSERT_EQ(link.launch(true, true, true, true), 0);
    temp.write("outside/item.json", "{}");
    const std::string linked = remote.commit();
    EXPECT_EQ(thrownBy([&] { install(broken); }), "17-2133");
    EXPECT_EQ(thrownBy([&] { install(second, "no/such"); }), "17-2133");
    EXPECT_EQ(thrownBy([&] { install(linked, "way"); }), "17-2133");
    EXPECT_EQ(installed("boards/a/item.json"), "{\"v\": 2}");
    EXPECT_EQ(list("area"), (Names{".plaz", "boards"}));
}

} // namespace
