#pragma once

#include "plaz/context_fixture.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "support/HUTFork.h"
#include "support/HUTSysCall.h"

#include <sstream>

/// A store with an area of its own; the working directory is the test's.
class GitTest : public ContextTest {
protected:
    GitTest() {
        HUTSysCall::changeDir(temp.makeDir("cwd"));
        model.setName("store");
        model.setRoot("store");
        model.setLocalRootDir(temp.makeDir("area"));
        model.setIsProductSpecific(true);
        auto* store = new HSCPlazQStore(&hub);
        store->assignModel(&model);
        hub.addStore(store);
    }
    ~GitTest() override { HUTSysCall::changeDir("/"); }

    void writeScript(const std::string& file, const std::string& body) const {
        test_system::writeProgram(temp.path(file), body, temp.path());
    }
    /// Puts a script where git is expected; it logs its arguments and goes on with @p behaviour.
    void replaceGit(const std::string& behaviour) {
        writeScript("tps/win64/git-2.45.0/cmd/git.exe", "echo \"$*\" >> " + temp.path("calls") + "\n" + behaviour);
        env.set("GDA_TPS_DIR", temp.path("tps"));
    }
    /// The arguments of each call since the last look.
    std::string takeCalls() {
        const std::string calls = readFile(temp.path("calls"));
        HUTFile::rmRecursive(temp.path("calls"));
        return calls;
    }
    bool load(HSCPlazBaseModel& owner, const Names& files = {"catalog.json"}) {
        return git.loadCatalog(&owner, &context.paths, files);
    }

    HSCPlazGit git;
    HSCPlazQStoreModel model;
    HSCPlaz hub;
    const std::string staging = temp.path("area/.staging");
    const std::string index = temp.path("area/.plaz/.index");
};

/// The same with a repository, which is the store's and holds a catalog.
class GitRemoteTest : public GitTest {
protected:
    GitRemoteTest() {
        model.setUrl(remote.getDir());
        remote.write("catalog.json", "1").commit();
    }

    static std::string config(const std::string& dir) { return readFile(dir + "/.git/config"); }
    /// The proxies and the URL that the store's working copy records.
    Names recordedProxies() const {
        Names found;
        std::istringstream words(config(index));
        for (std::string word, last; words >> word; last = word)
            if (last == "=" && word.find(':') != std::string::npos && word.front() != '+' && word != remote.getDir())
                found.push_back(word);
        return found;
    }

    /// What a failing disk makes of the working copy's packs.
    void emptyPacks() const {
        for (const std::string& name : HUTFile::createFileIter(index + "/.git/objects/pack"))
            if (boost::filesystem::path(name).extension() == ".pack")
                boost::filesystem::resize_file(index + "/.git/objects/pack/" + name, 0);
    }

    GitRepo remote{temp.path("remote")};
    const std::string clone = temp.path("clone");
};
