#include "plaz/tasks/HSCPlazUpdateCheckTask.h"

#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/repo/git/HSCPlazGitUpdateCheck.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazTask.h"

HSCPlazUpdateCheck HSCPlazUpdateCheckTask::look(HSCPlazTask& task, const HSCPlazQStoreModel& store,
                                                const std::string& proxy) {
    // RATIONALE: the working copy stands where refreshing keeps it, not in the store's local root directory.
    const HSCPlazGitStore repository = task.getWorkspace().gitStore(store);
    if (const std::string link = repository.layout.findWorkLink(); !link.empty())
        return {std::nullopt, "\"" + link + "\" is a link"};
    HSCPlazUpdateCheck check{std::nullopt, "another program is at work on the hub"};
    task.withLock([&] {
        check = HSCPlazGitUpdateCheck::look(repository.layout.getIndex(), repository.access, proxy, store.getBranch());
        return true;
    });
    if (check.hasFailed()) check.details.append(repository.refusal);
    task.fail(check.details);
    return check;
}
