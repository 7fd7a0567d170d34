#include "Program.h"

#include "Doctor.h"
#include "Failure.h"
#include "HubParams.h"
#include "JsonOutput.h"
#include "ShellMsg.h"
#include "StdoutDiversion.h"
#include "TclShell.h"
#include "TextOutput.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTText.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <optional>

namespace {

std::unique_ptr<Output> makeOutput(const Options& options) {
    if (options.json) return std::make_unique<JsonOutput>(std::cout);
    return std::make_unique<TextOutput>(std::cout, options.quiet, Colours(options.color, HUTSysCall::Stream::output));
}

int progressColumns(const Options& options) {
    return options.noProgress ? 0 : HUTSysCall::getTerminalWidth();
}

/// Sets one "PARAM=VALUE". @return what is wrong; the value, which may be a secret, is not repeated
std::string applySetting(const std::string& setting) {
    const std::size_t separator = setting.find('=');
    const std::string name = setting.substr(0, separator);
    HPAParamMgr& params = HPAParamMgr::getParamMgr();
    if (params.setValue(name, setting.substr(separator + 1))) return {};
    return params.findParam(name) ? "--set: the parameter " + name + " does not take such a value"
                                  : "--set: " + describeUnknownParam(name).getMessage();
}

} // namespace

Program::Program(CommandLine line, HDGUIStatus& status)
    : m_line(std::move(line)), m_options(m_line.options), m_status(status), m_progress(progressColumns(m_options)),
      m_log(m_progress, m_options.quiet, Colours(m_options.color, HUTSysCall::Stream::errors)),
      m_output(makeOutput(m_options)) {
    m_status.setObserver([this](const HDGUIStatus& changed) { m_progress.show(changed); });
}

Program::~Program() {
    m_status.setObserver({});
}

int Program::run() {
    switch (m_line.kind) {
    case CommandLine::Kind::help:
        m_output->showText("help", m_line.text);
        return finish(exitStatus::done, "");
    case CommandLine::Kind::version:
        m_output->showText("version", m_line.text);
        return finish(exitStatus::done, "");
    case CommandLine::Kind::wrong:
        return refuse(m_line.text);
    case CommandLine::Kind::command:
        break;
    }
    for (const std::string& setting : m_options.settings) {
        const std::string problem = applySetting(setting);
        if (!problem.empty()) return refuse(problem);
    }
    HUTEnv::setProduct(m_options.product, m_options.productVersion);
    const int status = runDiverted();
    return finish(status, m_failure);
}

int Program::refuse(const std::string& problem) {
    // What "help" does not find is listed by the help of plaz.
    const bool isOfAll = m_options.command.empty() || m_options.command == "help";
    const std::string command = isOfAll ? "" : " " + m_options.command;
    std::cerr << "plaz: " << HUTText::printable(problem, true) << "\nTry \"plaz" << command << " --help\"."
              << std::endl;
    return finish(exitStatus::wrongUsage, problem);
}

int Program::finish(int status, const std::string& error) {
    m_progress.erase();
    const bool isWritten = m_output->finish(error.empty() && status != exitStatus::done ? "the command failed" : error,
                                            m_log.getMessages());
    if (isWritten) return status;
    std::cerr << "plaz: the results could not be written to standard output" << std::endl;
    return status == exitStatus::done ? exitStatus::failed : status;
}

int Program::runDiverted() {
    std::optional<StdoutDiversion> diversion;
    if (m_options.json) diversion.emplace();
    int status = exitStatus::failed;
    try {
        status = runCommand();
    } catch (const Stop& stop) {
        status = stop.status;
    } catch (const HEXAll& failure) {
        fail(failure.getMsg());
    } catch (const std::exception& failure) {
        fail(messageOf(Msg::unexpectedFailure, failure.what()));
    }
    if (status == exitStatus::done) return status;
    if (!m_status.isCanceled()) {
        nameDoctor();
        return status;
    }
    const ComMsgMgrInstance cancelled = messageOf(ShellMsg::cancelled);
    ComMsgMgr::send(cancelled, MsgSeverity::info);
    if (m_failure.empty()) m_failure = cancelled.getMessage();
    return exitStatus::cancelled;
}

void Program::nameDoctor() {
    // What could not be fetched there is none of the hub's stores yet, and nothing that it would look at.
    if (m_options.command == "hub set" || m_options.command == "hub add-store") return;
    const std::vector<ComMsgMgr::Message>& said = m_log.getMessages();
    if (std::any_of(said.begin(), said.end(), [](const auto& message) { return isOfGit(message.id); }))
        ComMsgMgr::send(ShellMsg::doctorKnows, MsgSeverity::info);
}

int Program::runCommand() {
    static const std::map<std::string, int (Program::*)()> commands{{"stores", &Program::runStores},
                                                                    {"items", &Program::runItems},
                                                                    {"categories", &Program::runCategories},
                                                                    {"info", &Program::runInfo},
                                                                    {"outdated", &Program::runOutdated},
                                                                    {"why", &Program::runWhy},
                                                                    {"why-not", &Program::runWhyNot},
                                                                    {"install", &Program::runInstall},
                                                                    {"uninstall", &Program::runUninstall},
                                                                    {"update", &Program::runUpdate},
                                                                    {"refresh", &Program::runRefresh},
                                                                    {"check", &Program::runCheck},
                                                                    {"relocate", &Program::runRelocate},
                                                                    {"paths", &Program::runPaths},
                                                                    {"params", &Program::runParams},
                                                                    {"validate", &Program::runValidate},
                                                                    {"set", &Program::runSet},
                                                                    {"unset", &Program::runUnset},
                                                                    {"hub", &Program::runHub},
                                                                    {"hub set", &Program::runHubSet},
                                                                    {"hub unset", &Program::runHubUnset},
                                                                    {"hub add-store", &Program::runAddStore},
                                                                    {"hub remove-store", &Program::runRemoveStore},
                                                                    {"verify", &Program::runVerify},
                                                                    {"repair", &Program::runRepair},
                                                                    {"hold", &Program::runHold},
                                                                    {"unhold", &Program::runUnhold},
                                                                    {"history", &Program::runHistory},
                                                                    {"undo", &Program::runUndo},
                                                                    {"doctor", &Program::runDoctor},
                                                                    {"complete", &Program::runComplete},
                                                                    {"shell", &Program::runShell}};
    return (this->*commands.at(m_options.command))();
}

HSCPlaz& Program::getHub() {
    HSCPlaz& hub = HSCPlazMgr::getInstance().getHub();
    if (m_status.isCanceled()) throw Stop{exitStatus::cancelled};
    if (HubQueries(hub).hasHub()) return hub;
    m_failure = messageOf(ShellMsg::hubNotFound).getMessage(); // what was sent says more
    throw Stop{exitStatus::failed};
}

int Program::fail(const ComMsgMgrInstance& reason) {
    ComMsgMgr::send(reason, MsgSeverity::error);
    if (m_failure.empty()) m_failure = reason.getMessage();
    return exitStatus::failed;
}

int Program::runStores() {
    HSCPlaz& hub = getHub();
    const HubQueries queries = makeQueries();
    m_output->showStores(hub.getStores());
    queries.requireStores(); // else not all are above
    return exitStatus::done;
}

HubQueries Program::makeQueries() {
    HubQueries queries(getHub());
    if (!m_options.product.empty()) queries.requireProduct(m_options.product);
    return queries;
}

int Program::tellNothing(const NothingListed& nothing) {
    if (nothing.isFailure) return fail(nothing.message);
    const std::vector<ComMsgMgr::Message>& said = m_log.getMessages();
    const bool isExplained =
        std::any_of(said.begin(), said.end(), [](const auto& message) { return message.label != "INFO"; });
    if (!isExplained) ComMsgMgr::send(nothing.message, MsgSeverity::info);
    return exitStatus::done;
}

int Program::runCategories() {
    const HubQueries queries = makeQueries();
    std::vector<ListedCategory> categories;
    for (const HSCPlazQStore* store : queries.getScope(m_options.query.store)) {
        const std::vector<ListedCategory> found = findCategories(*store);
        categories.insert(categories.end(), found.begin(), found.end());
    }
    m_output->showCategories(categories);
    queries.requireStores(); // else not all are above
    return categories.empty() ? tellNothing({messageOf(ShellMsg::nothingOffered), false}) : exitStatus::done;
}

int Program::runItems() {
    const HubQueries queries = makeQueries();
    const UnderstoodQuery understood = queries.understand(m_options.query);
    std::vector<ListedItem> items = queries.findItems(understood.query);
    if (!items.empty())
        for (const ComMsgMgrInstance& note : understood.notes) ComMsgMgr::send(note, MsgSeverity::info);
    const std::size_t more =
        m_options.limit != 0 && items.size() > m_options.limit ? items.size() - m_options.limit : 0;
    items.resize(items.size() - more);
    m_output->showItems(items);
    if (more != 0) ComMsgMgr::send(ShellMsg::moreItems, MsgSeverity::info, std::to_string(more));
    queries.requireStores();  // else not all are above
    queries.requireRecords(); // else what is installed may be missing above
    return items.empty() ? tellNothing(queries.describeNothing(understood.query)) : exitStatus::done;
}

int Program::runInfo() {
    const HubQueries queries(getHub());
    m_output->showItem(
        queries.describe(queries.resolve(*ItemReference::parse(m_options.items.front()), m_options.store)));
    return exitStatus::done;
}

std::vector<HSCPlazQItem*> Program::resolveAll(HubQueries::Resolve resolve) {
    const HubQueries queries(getHub());
    std::vector<HSCPlazQItem*> items;
    for (const std::string& text : m_options.items)
        addOnce(items, (queries.*resolve)(*ItemReference::parse(text), m_options.store));
    return items;
}

std::vector<HSCPlazQItem*> Program::resolveRevisions(bool isOldOnly) {
    const HubQueries queries(getHub());
    std::vector<HSCPlazQItem*> revisions;
    for (const std::string& text : m_options.items)
        for (HSCPlazQItem* item : queries.resolveRevisions(*ItemReference::parse(text), m_options.store, isOldOnly))
            addOnce(revisions, *item);
    return revisions;
}

HubActions Program::makeActions() {
    return HubActions(getHub(), m_status, {m_options.quiet, m_options.discardChanges, m_options.reinstall},
                      [this](std::size_t number, std::size_t count) { m_progress.beginPart(number, count); });
}

int Program::show(const ItemsResult& result) {
    m_progress.erase();
    m_output->showActions(result.parts);
    return conclude(result);
}

int Program::show(const StoresResult& result) {
    m_progress.erase();
    m_output->showStoreResults(result.parts);
    return conclude(result);
}

std::vector<HSCPlazQStore*> Program::getStores() {
    return HubQueries(getHub()).getStores(m_options.stores);
}

int Program::runRefresh() {
    if (m_options.dryRun)
        return show(m_options.hub ? makeActions().planRefreshHub() : makeActions().planRefresh(getStores()));
    return show(m_options.hub ? makeActions().refreshHub(m_options.stores) : makeActions().refresh(getStores()));
}

int Program::runCheck() {
    return show(makeActions().check(getStores()));
}

int Program::runRelocate() {
    HSCPlazQStore* store = HubQueries(getHub()).getScope(m_options.store).front();
    return show(makeActions().relocate(*store, m_options.directory));
}

int Program::runInstall() {
    return change(&HubActions::install, resolveAll(&HubQueries::resolve));
}

int Program::runUninstall() {
    if (!m_options.allRevisions && !m_options.oldRevisions)
        return change(&HubActions::uninstall, resolveAll(&HubQueries::resolveInstalled));
    return change(&HubActions::uninstall, resolveRevisions(m_options.oldRevisions));
}

std::vector<HSCPlazQItem*> Program::resolveRecorded() {
    if (!m_options.items.empty()) return resolveRevisions(false);
    const std::vector<HSCPlazQItem*> items = HubQueries(getHub()).findRecorded(m_options.store);
    if (items.empty()) ComMsgMgr::send(ShellMsg::nothingInstalled, MsgSeverity::info);
    return items;
}

int Program::runVerify() {
    const FilesResult result = makeActions().verify(resolveRecorded());
    m_progress.erase();
    m_output->showFiles(result.parts);
    return conclude(result);
}

int Program::runRepair() {
    return show(makeActions().repair(resolveRecorded()));
}

int Program::runUpdate() {
    if (!m_options.all) return change(&HubActions::update, resolveAll(&HubQueries::resolveForUpdate));
    const HubQueries queries(getHub());
    const std::vector<HSCPlazQItem*> outdated = queries.findOutdated();
    const std::vector<std::string> unread = queries.findUnread();
    const std::vector<ComMsgMgrInstance> passedOver = queries.describePassedOver();
    if (outdated.empty() && unread.empty() && passedOver.empty()) {
        queries.requireStores();
        ComMsgMgr::send(ShellMsg::nothingToUpdate, MsgSeverity::info);
    }
    int status = change(&HubActions::update, outdated);
    for (const ComMsgMgrInstance& left : passedOver) ComMsgMgr::send(left, MsgSeverity::info);
    for (const ComMsgMgrInstance& held : queries.describeHeld()) ComMsgMgr::send(held, MsgSeverity::info);
    for (const std::string& store : unread) status = fail(messageOf(Msg::catalogUnread, store, store));
    return status;
}

int Program::runPaths() {
    const std::vector<HSCPlazPathsInForce::StorePaths> stores =
        HSCPlazPathsInForce::ofStores(HSCPlazMgr::getInstance().getHub());
    m_output->showPaths(HSCPlazPathsInForce::ofHub(), stores);
    return exitStatus::done;
}

int Program::runDoctor() {
    HSCPlaz& hub = HSCPlazMgr::getInstance().getHub(); // one that cannot be read is looked at all the same
    const std::vector<Finding> findings =
        Doctor(hub, m_status).examine(m_options.stores.empty() ? hub.getStores() : getStores());
    m_progress.erase();
    m_output->showFindings(findings);
    const auto problems = std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.state == Finding::State::problem;
    });
    if (m_status.isCanceled()) return exitStatus::failed;
    if (problems == 0) return exitStatus::done;
    return fail(messageOf(ShellMsg::problemsFound, std::to_string(problems)));
}

int Program::runShell() {
    return TclShell(m_status, m_log, m_progress).run(m_options.script);
}

int Program::runValidate() {
    std::vector<HSCPlazFileCheck> checks;
    for (const std::string& file : m_options.files) checks.push_back(HSCPlazFileCheck::of(file));
    m_output->showChecks(checks);
    const auto bad =
        std::count_if(checks.begin(), checks.end(), [](const HSCPlazFileCheck& check) { return !check.isValid(); });
    if (bad == 0) return exitStatus::done;
    return fail(messageOf(ShellMsg::filesNotValid, std::to_string(bad), std::to_string(checks.size())));
}
