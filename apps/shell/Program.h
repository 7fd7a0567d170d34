#pragma once

#include "CommandLine.h"
#include "MessageLog.h"
#include "Output.h"
#include "ProgressLine.h"

#include "support/HDGUIStatus.h"

#include <memory>
#include <string>
#include <vector>

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
    int runDiverted();
    int runCommand();
    int runStores();
    int runItems();
    int runInfo();
    int runRefresh();
    int runCheck();
    int refreshWithHub();
    /// The stores named, or all.
    std::vector<HSCPlazQStore*> getStores();
    /// Does @p action(HubActions, store) to each store until the run is cancelled, and shows what became of them.
    template <typename Action> int actOnStores(const std::vector<HSCPlazQStore*>& stores, Action action);
    int runRelocate();
    int runInstall();
    int runUninstall();
    int runUpdate();
    int runPaths();
    int runParams();
    int runValidate();
    int runDoctor();
    int runShell();

    int refuse(const std::string& problem);
    int finish(int status, const std::string& error);
    HSCPlaz& getHub();
    /// Every item of the command line, once each, as @p resolve of HubQueries understands it; all before any is
    /// touched.
    template <typename Resolve> std::vector<HSCPlazQItem*> resolveAll(Resolve resolve);
    /// Does @p action of HubActions to each until the run is cancelled. @return what became of them
    template <typename Subject, typename Action> auto actOnAll(const std::vector<Subject*>& subjects, Action action);
    /// Does it to items, and shows what became of them.
    template <typename Action> int act(const std::vector<HSCPlazQItem*>& items, Action action);

    CommandLine m_line;
    const Options& m_options;
    HDGUIStatus& m_status;
    ProgressLine m_progress;
    MessageLog m_log;
    std::unique_ptr<Output> m_output;
};
