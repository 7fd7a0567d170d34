#pragma once

#include "plaz/base/PlazExport.h"
#include "plaz/model/repo/HSCPlazRepo.h"
#include "support/HSTVector.h"

#include <cstdint>
#include <string>
#include <vector>

class HSCPlazPathMgr;
class HSCPlazQStore;
class HSCPlazQStoreModel;

/// The repository kept with git: drives the git executable, always as a child process, one command at a time.
/// Holds no state; what it knows lies on disk, in the area of each store (HSCPlazStoreLayout draws it).
///
/// A façade: the work is done in the rooms below (git/), which tell what they have to tell as values. Here it is sent,
/// and paths and configuration are asked of the running hub.
///
/// ".staging" and ".incoming" are removed before they are used, at the end of an installation and whenever something
/// fails; only a catalog update leaves ".staging", for its caller to read.
///
/// Not safe to use from several threads at once: a command changes the process's working directory and the verbosity of
/// the message service, and brings both back, also on failure.
class PLAZ_API HSCPlazGit : public HSCPlazRepo {
public:
    /// Places one item (an item model) in its store's area, at the commit recorded for it.
    ///
    /// A working copy that is complete is used as it stands; it is fetched only when it lacks the commit.
    /// @param hub    holds the item's store
    /// @param model  the item; null, another kind of model or one of an unknown store gives false
    /// @return false, with what was installed untouched, when nothing was placed
    /// @throws HEXAll Msg::fetchedItemInvalid when the fetched metadata file cannot be trusted, and as exec_git
    /// Sends Msg::remoteAccessOff, gitAccessOff, commitIdMissing, commitGone (in the remote, too), itemRefused,
    /// storeRefused, dirNotWritable and what exec_git sends.
    bool install(HSCPlaz* hub, HSCPlazBaseModel* model) override;
    /// Does nothing. @return true
    bool update(HSCPlazBaseModel* model) override;
    /// Does nothing: the tasks remove what is installed. @return true
    bool uninstall(HSCPlazBaseModel* model) override;
    /// Puts every item's metadata file and change log, at the head of the store's branch, into the staging directory.
    /// Where the remote has no such branch (any more) the head of "master" stands in.
    ///
    /// @param model  a store model; null and other models give false
    /// @return true also when there is nothing to fetch: a store that is not for the running product, or without items
    /// @throws HEXAll as exec_git; nothing is left in the staging directory then
    /// Sends Msg::remoteAccessOff, gitAccessOff, storeRefused, itemRefused (the item is left out), dirNotWritable,
    /// branchReplaced (once in a process until the branch is there again), branchMissing, repositoryEmpty and what
    /// exec_git sends.
    bool updateCatalog(HSCPlazBaseModel* model) override;
    virtual ~HSCPlazGit();

    /// Puts @p catalogFiles, at the head that updateCatalog() follows, into the staging directory; for the hub at the
    /// head of "master", or of the only branch that there is, into the staging path of its root.
    ///
    /// @param model         a store model or the hub model; null and other models give false
    /// @param pathMgr       null gives false
    /// @param catalogFiles  repository-relative; none gives false
    /// @throws HEXAll as exec_git; nothing is left in the staging directory then
    /// Sends what updateCatalog() sends.
    bool loadCatalog(HSCPlazBaseModel* model, HSCPlazPathMgr* pathMgr, const HSTVector<std::string>& catalogFiles);
    /// Whether the store's local root directory holds ".done"; false for null.
    bool isInstalled(const HSCPlazQStore* store) const;

    /// Makes the staging directory a copy of the store's working copy, which is created, made afresh (another URL,
    /// never completed) or fetched first.
    ///
    /// @param store      null gives 0
    /// @param bInternet  fetch even a complete working copy of the right URL
    /// @return non-zero when done; 0 leaves no staging directory
    /// @throws HEXAll as exec_git
    /// Sends Msg::storeRefused for a URL that git is not given, Msg::gitAccessOff, Msg::dirNotWritable and what
    /// exec_git sends.
    static int cloneOrUpdateRepoForStore(const HSCPlazQStoreModel* store, bool bInternet);
    /// Makes @p stagingDir afresh: a working copy of the hub's own repository, nothing checked out. On failure it may
    /// hold a part of one. User id and token may be empty.
    /// @return false without git access, or when @p stagingDir cannot be written
    /// @throws HEXAll as exec_git
    /// Sends Msg::gitAccessOff, Msg::dirNotWritable and what exec_git sends.
    static bool cloneRepoForHub(const std::string& root, const std::string& stagingDir, const std::string& url,
                                const std::string& userId, const std::string& token);
    /// Clones a repository into @p dir, a directory of the hub's own, and checks out @p branch (empty: "master"), or
    /// "master" where that fails. Nothing is done when @p dir holds a complete clone; what an attempt without end has
    /// left in its ".git" is removed first, and ".git" is removed on failure.
    ///
    /// @param url    without credentials; those of the configuration file are added
    /// @param proxy  for this clone; empty: the one that setProxy(dir) finds
    /// @throws HEXAll Msg::storeRefused for a URL or branch that git is not given, Msg::dirNotWritable,
    /// Msg::gitAccessOff and as exec_git Sends Msg::clonedRepo and what exec_git sends.
    static void cloneRepo(const std::string& url, const std::string& dir, const std::string& branch,
                          const std::string& proxy);
    /// Moves @p branch (empty: "master") of the clone in @p dir to where it stands at @p url, only ever forward, and
    /// checks it out, or "master" where that fails. No other branch moves, whichever is checked out. A clone of another
    /// URL is told the new one.
    /// @throws HEXAll as cloneRepo; what is checked out is then as it was
    static void updateRepo(const std::string& dir, const std::string& url, const std::string& branch);
    /// Whether the remote branch has moved past the last commit of the clone in @p cloneDir. Fetches nothing.
    ///
    /// A branch that the remote lacks is looked up as "master". Only the first seven characters of the commits count.
    /// @param cloneDir  holds ".git" and ".done"; takes "__git1.log" and "__git2.log", which are gone afterwards
    /// @param url       as a store of the hub has it (then that store's rules and credentials apply), or another
    /// @param proxy     recorded as the clone's http.proxy; empty leaves the one that is recorded
    /// @param branch    empty means "master", or the only branch of a remote that has none
    /// Holds the hub's lock meanwhile, for the files in the clone and its settings.
    /// @return 1 when it has, also when the clone's last commit cannot be told; 0 when it has not, when there is no
    /// complete clone, and when nothing could be found out
    /// Sends Msg::hubBusy when the lock is not to be had in time.
    static int hasUpdate(const std::string& cloneDir, const std::string& url, const std::string& proxy,
                         const std::string& branch);

    /// Makes the working copy in @p dir use the certificate bundle that comes with git. This and the other settings of
    /// access never stop an operation: what cannot be set is left unset, and the next command tells.
    static void setSslCaInfo(const std::string& dir);
    /// Makes the working copy use the proxies of the running product: the parameters "plaz.http_proxy" and
    /// "plaz.https_proxy" for "Solvan", the user's preference for "kvq". Without one for HTTP, asks the helper program
    /// "zenproxy.exe" of the installation, where there is one.
    static void setProxy(const std::string& dir);
    /// Makes the working copy use this HTTP proxy; empty changes nothing.
    static void setProxy(const std::string& dir, const std::string& proxy);
    /// Keeps the user's and the system's credential helpers out of the working copy. Nothing without git access.
    static void config_credential_helper(const std::string& dir);
    /// Warns of a private store without credentials where git may not ask for them, then registers the remote and
    /// fetches (setRemote). @param store  null gives false
    /// Sends Msg::credentialsMissing, Msg::gitAccessOff and what exec_git sends. @throws HEXAll as exec_git
    static bool checkAskPass(const std::string& dir, const HSCPlazQStoreModel* store);

    /// Registers the store's URL, with its credentials, as "origin" in @p dir and fetches. @return false without git
    /// access (Msg::gitAccessOff is sent); nothing is done then
    /// @throws HEXAll as exec_git
    static bool setRemote(const std::string& dir, const HSCPlazQStoreModel& store);
    /// The URL of "origin" recorded in @p dir; empty when there is none or the file cannot be read. Runs no process.
    static std::string getRemoteUrl(const std::string& dir);
    /// Restricts later checkouts in @p dir to its sparse-checkout file. @throws HEXAll as exec_git
    static void enableSparseCheckout(const std::string& dir);
    /// Writes the sparse-checkout file of @p dir: @p paths, repository-relative, one a line, in the place of any
    /// before. Characters that git would read as a pattern are escaped. @return false when the file cannot be written
    /// Sends Msg::dirNotWritable.
    static bool addItemsToSparseCheckout(const std::string& dir, const std::vector<std::string>& paths);
    /// Checks out a branch or commit in @p dir. @throws HEXAll as exec_git
    static void checkout(const std::string& dir, const std::string& ref);

    /// Runs one git command and waits for it; a command that fails is run once more.
    ///
    /// In a directory that holds ".git" the setting http.sslVerify is false while the command runs and true afterwards;
    /// it is left alone without git access.
    /// @param args          one git argument each, without the program
    /// @param workDir       where the command runs; must exist
    /// @param internalCall  leaves http.sslVerify alone
    /// @param logFile       receives the command's output; empty: a file in @p workDir that is gone afterwards
    /// @return 0
    /// @throws HEXAll Msg::gitNotFound, or Msg::gitFailed when the command failed twice or was cancelled
    /// Sends Msg::gitErrors with the error lines of the output before it throws, unless cancelled.
    static int exec_git(const std::vector<std::string>& args, const std::string& workDir, bool internalCall,
                        const std::string& logFile);
    /// Runs one complete command line (see HUTFork::splitCmdLine) in git's environment and waits for its end;
    /// HUTFork::interruptAll ends it. User parts of web URLs reach git through its environment.
    ///
    /// @param workDir   empty: the current directory
    /// @param outFile   takes standard output and standard error; replaced
    /// @param exitCode  the exit status, when the result is 0
    /// @return 0 when the process ran, -1 when the pipe for its output could not be made, -2 that for its error output
    ///         (on Windows; elsewhere it writes into the file itself), -4 when it could not be started
    static int exec_git_win(const std::string& cmdLine, const std::string& workDir, const std::string& outFile,
                            std::uint32_t& exitCode);
    /// Sets http.sslVerify ("true", "false") of the working copy in @p workDir, where there is one. Nothing without git
    /// access.
    /// @throws HEXAll as exec_git
    static void setSslVerify(const std::string& workDir, const std::string& value);

    /// Where git is: in the installation, or along PATH while the parameter "plaz.useGitOnSearchPath" is on; empty when
    /// it is nowhere. Looked up afresh at each call.
    static std::string getGitExePath();
    /// Seconds after which a command is killed: the parameter "plaz.gitTimeOut", else 100.
    static int getGitTimeOut();
    /// The parameter "plaz.enableDebugGit", or "PLAZ_SHOW_LOG" begins with "Y" or "y".
    static bool isDebugGit();
    /// The parameter "plaz.enableGitAccess"; true when it is not registered.
    static bool isGitAccessEnabled();
    /// The parameter "plaz.enableRemoteAccess". Sends Msg::remoteAccessOff when it is false.
    static bool hasRemoteAccess();
    /// Writes a line to standard output and to the debug log while git debugging is on.
    static void debugTrace(const std::string& line);
};
