#pragma once

#include "CommandLine.h"
#include "HubActions.h"
#include "HubQueries.h"
#include "MessageLog.h"
#include "Output.h"
#include "ProgressLine.h"

#include "support/HDGUIStatus.h"

#include <memory>
#include <string>
#include <vector>

class HPAParam;
class HSCPlaz;

/// One run of the program: carries out what a command line asks for.
class Program {
public:
    /// @param status  through which the run can be cancelled; must outlive the object
    Program(CommandLine line, HDGUIStatus& status);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// @return the exit status (see exitStatus)
    int run();

private:
    /// Ends a command whose failure has been reported already.
    struct Stop {
        int status;
    };

    int runDiverted();
    int runCommand();
    int runStores();
    int runItems();
    int runCategories();
    /// A command by which people name a product is about stores that are for it.
    HubQueries makeQueries();
    /// Tells that there is nothing to list, and why.
    int tellNothing(const NothingListed& nothing);
    int runInfo();
    int runRefresh();
    int runCheck();
    /// The stores named, or all.
    std::vector<HSCPlazQStore*> getStores();
    HubActions makeActions();
    /// Changes what is installed, or shows what that would do.
    int change(HubActions::Change action, const std::vector<HSCPlazQItem*>& items);
    int runRelocate();
    int runInstall();
    int runUninstall();
    int runUpdate();
    int runOutdated();
    int runWhy();
    int runWhyNot();
    int runVerify();
    int runRepair();
    int runHold();
    int runUnhold();
    int runHistory();
    int runUndo();
    int runPaths();
    int runParams();
    int runSet();
    int runUnset();
    /// The value on the command line, where it is no secret; else it is asked for.
    std::string takeValue(const HPAParam& param) const;
    int runHub();
    int runHubSet();
    int runHubUnset();
    int runAddStore();
    int runRemoveStore();
    int runValidate();
    int runDoctor();
    int runShell();
    int runComplete();

    /// Where git has failed: who looks for the cause.
    void nameDoctor();
    int refuse(const std::string& problem);
    int finish(int status, const std::string& error);
    HSCPlaz& getHub();
    /// Every item of the command line, once each, as @p resolve of HubQueries understands it; all before any is
    /// touched.
    std::vector<HSCPlazQItem*> resolveAll(HubQueries::Resolve resolve);
    /// Every installed revision of the items that were named.
    std::vector<HSCPlazQItem*> resolveRevisions(bool isOldOnly);
    /// The same; without a name all that is installed.
    std::vector<HSCPlazQItem*> resolveRecorded();
    /// Show what became of a command.
    int show(const ItemsResult& result);
    int show(const StoresResult& result);
    int show(const PlanResult& result);
    /// @return the exit status of a command that has come to that
    template <typename Result> int conclude(const CommandResult<Result>& result) {
        if (result.isDone) return exitStatus::done;
        if (result.reason) m_failure = result.reason->what();
        return exitStatus::failed;
    }
    /// Sends why the command failed, and keeps it for its answer.
    int fail(const ComMsgMgrInstance& reason);

    CommandLine m_line;
    const Options& m_options;
    HDGUIStatus& m_status;
    ProgressLine m_progress;
    MessageLog m_log;
    std::unique_ptr<Output> m_output;
    std::string m_failure; ///< why the command failed; empty where that is not known
};
