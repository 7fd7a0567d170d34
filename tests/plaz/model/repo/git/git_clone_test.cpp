#include "plaz/model/repo/git/git_fixture.h"

#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"

namespace fs = boost::filesystem;

namespace {

class GitClone : public GitRemoteTest {
protected:
    GitClone() {
        for (const char* file : {"a/item.json", "a/changelog.txt", "a/big", "b/item.json"}) remote.write(file, "{}");
        remote.commit();
        hubModel.setRoot("hub");
    }
    int stage() { return HSCPlazGit::cloneOrUpdateRepoForStore(&model, false); }
    std::string staged(const std::string& file) const { return readFile(staging + "/" + file); }
    // What the working copy loses only when it is made afresh.
    const std::string mark = "area/.plaz/.index/.git/mark";
    HSCPlazModel hubModel;
    const std::string hubStaging = context.paths.getStagingPath("hub");
};

// Faults: a working tree in the index, objects copied instead of linked, verification left off, no marker.
TEST_F(GitClone, FreshCloneIsCompleteAndStagedByLinks) {
    ASSERT_NE(stage(), 0);
    EXPECT_EQ(HUTFile::createFileIter(index), (Names{".done", ".git"}));
    EXPECT_EQ(HSCPlazGit::getRemoteUrl(staging), remote.getDir());
    EXPECT_NE(readFile(index + "/.git/config").find("sslVerify = true"), std::string::npos);
    const std::string packs = "/.git/objects/pack/";
    EXPECT_GE(HUTFile::createFileIter(staging + packs).size(), 2U);
    for (const std::string& pack : HUTFile::createFileIter(staging + packs))
        EXPECT_TRUE(fs::equivalent(staging + packs + pack, index + packs + pack));
    EXPECT_EQ(HSCPlazGit::cloneOrUpdateRepoForStore(nullptr, true), 0);
    EXPECT_FALSE(git.isInstalled(hub.getStore("store"))) << "the area itself is no clone";
}

// Faults: a whole store on disk for one file, a list that grows, a fetch from scratch, a stale local branch.
TEST_F(GitClone, CatalogFilesFollowTheBranch) {
    ASSERT_TRUE(load(model, {"a/item.json", "a/big"}));
    temp.write(mark, "");
    ASSERT_TRUE(load(model));
    EXPECT_EQ(HUTFile::createFileIter(staging), (Names{".done", ".git", "catalog.json"}));
    EXPECT_EQ(staged(".git/info/sparse-checkout"), "catalog.json\n");
    remote.write("catalog.json", "2").commit();
    ASSERT_TRUE(load(model));
    EXPECT_EQ(staged("catalog.json"), "2");
    EXPECT_TRUE(HUTFile::exists(temp.path(mark)));
    EXPECT_EQ(takeIds(), Names{});
}

// Faults: a fetch that what the remote has become blocks; the catalog of one branch and the head of another; a store
// without any catalog for want of a branch; one fault told twice, or in git's words alone;
// a failure that destroys what there was, or leaves half a staging directory.
TEST_F(GitClone, RefreshFollowsARemoteThatChanges) {
    const auto inRemote = [this](const char* line) { remote.git(HUTFork::splitCmdLine(line)); };
    const auto publish = [this](const char* content) { remote.write("catalog.json", content).commit(); };
    const auto follow = [this](const char* branch) { model.setBranch(branch); };
    const auto remove = [this] { HUTFile::rmRecursive(remote.getDir()); };
    const auto pack = [this] { GitRepo(index).git({"pack-refs", "--all"}); };
    const auto startAnew = [&] { inRemote("checkout --orphan new"), publish("u"), inRemote("branch -M next"); };
    const std::tuple<const char*, std::function<void()>, std::string, Names> cases[] = {
        {"another branch", [&] { inRemote("checkout -b next"), publish("3"), follow("next"); }, "3", {}},
        {"a directory in the branch's place", [&] { inRemote("branch -m next/1"), follow("next/1"); }, "3", {}},
        {"and back", [&] { inRemote("branch -m next"), follow("next"); }, "3", {}},
        {"packed refs", pack, "3", {}},
        {"an older commit", [&] { inRemote("reset --hard HEAD~"); }, "1", {}},
        {"another history", startAnew, "u", {}},
        {"a tag of the branch's name", [&] { inRemote("tag next"), publish("t"); }, "t", {}},
        {"no such branch", [&] { inRemote("checkout master"), follow("gone"); }, "1", {"17-2170"}},
        {"still none", [&] { publish("2"); }, "2", {}},
        {"there at last", [&] { inRemote("branch gone"); }, "2", {}},
        {"gone again", [&] { inRemote("branch -D gone"); }, "2", {"17-2170"}},
        {"no master either", [&] { inRemote("branch -m main"); }, "", {"17-2171"}},
        {"nor asked for", [&] { follow(""); }, "", {"17-2171"}},
        {"the branch that is there", [&] { follow("main"); }, "2", {}},
        {"the only one, unasked", [&] { inRemote("branch -D next"), follow(""); }, "2", {}},
        {"an empty repository", [&] { remove(), GitRepo(remote.getDir()); }, "", {"17-2172"}},
        {"none", remove, "", {"17-1990"}},
        {"another one", [&] { GitRepo(remote.getDir()), publish("n"), follow(""); }, "n", {}}};
    for (const auto& [what, change, content, ids] : cases) {
        SCOPED_TRACE(what);
        change();
        bool isLoaded = false;
        const std::string thrown = thrownBy([&] { isLoaded = load(model); });
        EXPECT_EQ(isLoaded, !content.empty());
        EXPECT_EQ(thrown, ids == Names{"17-1990"} ? "17-1587" : "nothing");
        EXPECT_EQ(takeIds(), ids);
        EXPECT_EQ(HUTFile::exists(staging), !content.empty());
        if (content.empty()) { // what was fetched before is still there
            EXPECT_NE(stage(), 0);
            continue;
        }
        EXPECT_EQ(staged("catalog.json"), content);
        EXPECT_TRUE(HSCPlazGitHead::moveTo(index, model.getBranch()));
        EXPECT_EQ(readFile(index + "/.git/HEAD"), remote.git({"rev-parse", "HEAD"}) + "\n");
    }
}

// Fault: a working copy that is not this store's, or not whole, is used, or stops each refresh; or one that is whole is
// thrown away.
TEST_F(GitClone, DamagedOrForeignWorkingCopyIsMadeAfresh) {
    const std::string gitDir = "area/.plaz/.index/.git", head = index + "/.git/HEAD";
    const std::pair<const char*, std::function<void()>> damages[] = {
        {"none, but for what a crash leaves",
         [&] {
             for (const char* file : {"/config.lock", "/refs/remotes/origin/master.lock", "/objects/pack/tmp_pack_x"})
                 temp.write(gitDir + file, "");
         }},
        {"no origin", [&] { temp.write(gitDir + "/config", "[core]\n\tbare = false\n"); }},
        {"no marker", [&] { HUTFile::rmRecursive(index + "/.done"); }},
        {"no repository", [&] { HUTFile::rmRecursive(index + "/.git"); }},
        {"an emptied pack", [&] { emptyPacks(); }},
        {"no head", [&] { fs::remove(head); }},
        {"an empty head", [&] { fs::resize_file(head, 0); }},
        {"another URL", [&] {
             fs::rename(temp.path("remote"), temp.path("moved"));
             model.setUrl(temp.path("moved"));
         }}};
    for (const auto& [what, damage] : damages) {
        SCOPED_TRACE(what);
        ASSERT_TRUE(load(model));
        ASSERT_TRUE(HSCPlazGitHead::moveTo(index, "master"));
        temp.write(mark, "");
        damage();
        EXPECT_TRUE(load(model));
        EXPECT_EQ(HUTFile::exists(temp.path(mark)), what == damages[0].first);
        EXPECT_FALSE(HUTFile::exists(temp.path(gitDir + "/objects/pack/tmp_pack_x")));
    }
    EXPECT_EQ(takeIds(), Names{});
}

// Fault: the user's choice of another board repository is ignored, or obeyed for other stores.
TEST_F(GitClone, BoardStoreFollowsItsParameter) {
    setParam("board.repoURL", remote.getDir());
    model.setUrl(temp.path("nowhere"));
    EXPECT_EQ(thrownBy([this] { load(model); }), "17-1587");
    model.setStoreType("board");
    EXPECT_TRUE(load(model));
}

// Faults: git is given a URL, branch or path that makes it do something else; switched-off access is used, or nobody is
// told that it is off.
TEST_F(GitClone, NothingRunsForARefusedStoreOrWithoutAccess) {
    const auto refuses = [this](const std::string& storeUrl, const std::string& branch, const std::string& file) {
        model.setUrl(storeUrl);
        model.setBranch(branch);
        EXPECT_EQ(outcome(load(model, {file})), "! 17-2161") << storeUrl << branch << file;
    };
    for (const char* address : {"ext::sh -c x", "--upload-pack=x", ""}) refuses(address, "", "f");
    for (const char* file : {"../f", "f\n/*"}) refuses(remote.getDir(), "", file);
    refuses(remote.getDir(), "--orphan", "f");
    model.setBranch("");
    EXPECT_FALSE(load(model, {}));
    EXPECT_FALSE(HUTFile::exists(index));
    EXPECT_FALSE(load(hubModel));
    EXPECT_EQ(takeIds(), Names{"17-1532"}) << "the hub's maintainer is blamed";
    setParam("plaz.enableGitAccess", "false");
    hubModel.setRemoteRepository(remote.getDir());
    EXPECT_FALSE(load(model) || load(hubModel) || HSCPlazGit::setRemote(remote.getDir(), model));
    EXPECT_EQ(thrownBy([this] { HSCPlazGit::cloneRepo(remote.getDir(), clone, "", ""); }), "17-2255");
    EXPECT_EQ(takeIds(), (Names{"17-2255", "17-2255", "17-2255"}));
    EXPECT_FALSE(HSCPlazStoreLayout::isComplete(index));
    setParam("plaz.enableRemoteAccess", "false");
    EXPECT_EQ(outcome(load(model) || git.updateCatalog(&model)), "! 17-1559 17-1559");
}

// Fault: one bad item hides the others, more than the described files is fetched, or git runs for nothing.
TEST_F(GitClone, CatalogUpdateFetchesItemFiles) {
    EXPECT_TRUE(git.updateCatalog(&model)) << "no items";
    for (const char* root : {"../b", "a", "b"}) {
        HSCPlazQItemModel* item = model.addItem(std::make_unique<HSCPlazQItemModel>());
        item->setRoot(root);
        item->setMetadataFile("item.json");
    }
    model.setIsProductSpecific(false);
    EXPECT_TRUE(git.updateCatalog(&model) && !HUTFile::exists(index)) << "not for this product";
    model.setIsProductSpecific(true);
    EXPECT_TRUE(git.updateCatalog(&model));
    EXPECT_EQ(HUTFile::createFileIter(staging), (Names{".done", ".git", "a", "b"}));
    EXPECT_EQ(HUTFile::createFileIter(staging + "/a"), (Names{"changelog.txt", "item.json"}));
    EXPECT_EQ(takeIds(), Names{"17-2160"});
}

// Faults: a half-made clone counts as one, a branch that is missing ends the work, an update goes to the old place, or
// moves another branch that happens to be checked out, or a branch without its files, and calls that done.
TEST_F(GitClone, PlainCloneAndUpdate) {
    const auto content = [this] { return readFile(clone + "/catalog.json"); };
    EXPECT_EQ(thrownBy([this] { HSCPlazGit::cloneRepo(temp.path("gone"), clone, "", ""); }), "17-1587");
    EXPECT_EQ(thrownBy([this] { HSCPlazGit::cloneRepo("ext::sh -c x", clone, "", ""); }), "17-2161");
    EXPECT_EQ(HUTFile::createFileIter(clone), Names{});
    takeIds();
    HSCPlazGit::cloneRepo(remote.getDir(), clone, "no-such-branch", "");
    HSCPlazGit::cloneRepo("/other", clone, "", "");
    EXPECT_EQ(takeIds(), Names{"60-832"});
    EXPECT_EQ(content(), "1");
    fs::rename(remote.getDir(), temp.path("moved"));
    GitRepo moved(temp.path("moved"));
    for (const std::string line : {"branch next", "branch ahead", "checkout --orphan other", "commit --message=other"})
        moved.git(HUTFork::splitCmdLine(line));
    std::string text = "1";
    for (const char* branch : {"master", "ahead", "next", "next", "other", "master"}) {
        moved.git({"checkout", branch});
        moved.write("catalog.json", text += branch).commit();
        HSCPlazGit::updateRepo(clone, moved.getDir(), branch);
        EXPECT_EQ(content(), text);
    }
    for (const char* branch : {"master", "ahead", "next", "other"})
        EXPECT_EQ(GitRepo(clone).git({"rev-parse", branch}), moved.git({"rev-parse", branch})) << branch;
    EXPECT_EQ(thrownBy([&] { HSCPlazGit::updateRepo(clone, moved.getDir(), "gone"); }), "17-1587");
    EXPECT_EQ(content(), text);
    moved.write("catalog.json", "theirs").commit();
    temp.write("clone/catalog.json", "mine");
    EXPECT_EQ(thrownBy([&] { HSCPlazGit::updateRepo(clone, moved.getDir(), ""); }), "17-1587");
    EXPECT_EQ(content(), "mine");
}

// Faults: a whole repository for the hub's files, a failure that leaves half of them, a root that leads out is obeyed;
// a message about the repository of nothing.
TEST_F(GitClone, HubFilesAloneAreFetched) {
    hubModel.setRemoteRepository(remote.getDir());
    EXPECT_TRUE(load(hubModel));
    EXPECT_EQ(HUTFile::createFileIter(hubStaging), (Names{".git", "catalog.json"}));
    hubModel.setRemoteRepository(GitRepo(temp.path("empty")).getDir());
    EXPECT_FALSE(load(hubModel));
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].id + messages[0].args[0], "17-2172hub");
    hubModel.setRemoteRepository(temp.path("gone"));
    EXPECT_EQ(thrownBy([this] { load(hubModel); }), "17-1587");
    EXPECT_FALSE(HUTFile::exists(hubStaging));
    takeIds();
    hubModel.setRoot("../x");
    EXPECT_EQ(outcome(load(hubModel)), "! 17-2161");
}

/// A tree that holds one thing a hundred times.
std::string addTree(GitRepo& repo, const std::string& mode, const std::string& id) {
    std::string raw, tree;
    for (std::size_t digit = 0; digit < id.size(); digit += 2)
        raw += static_cast<char>(std::stoi(id.substr(digit, 2), nullptr, 16));
    for (int name = 100; name < 200; ++name) tree += mode + ' ' + std::to_string(name) + std::string(1, '\0') + raw;
    return repo.write("tree", tree).git({"hash-object", "-t", "tree", "-w", "tree"});
}

// Faults: a small repository whose trees repeat themselves makes git take all memory, or fill the disk with what it
// lists.
TEST_F(GitClone, RepositoryWithoutEndIsGivenUp) {
    std::string tree = addTree(remote, "100644", remote.git({"rev-parse", "HEAD:catalog.json"}));
    for (int depth = 0; depth < 4; ++depth) tree = addTree(remote, "40000", tree);
    remote.git({"update-ref", "HEAD", remote.git({"commit-tree", "-m", "x", tree})});
    setParam("plaz.gitMemoryLimit", "256");
    setParam("plaz.gitLogLimit", "1");
    EXPECT_EQ(thrownBy([this] { load(model); }), "17-1587");
    EXPECT_EQ(takeIds(), (Names{"17-1990", "17-2276"}));
    const HSCPlazGitAnswer listing = HSCPlazGitRunner::ask({"ls-tree", "-r", "origin/master"}, index);
    EXPECT_NE(listing.getReason().find("set plaz.gitLogLimit"), std::string::npos) << listing.getReason();
}

} // namespace
