#include "plaz/model/repo/HSCPlazRepoFactory.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/model/repo/HSCPlazGit.h"

#include <memory>

HSCPlazRepo* HSCPlazRepoFactory::createRepo(HSCPlazTypes::HSCPlazRepoType type) {
    static constexpr const char* self = "HSCPlazRepoFactory::createRepo";
    static std::unique_ptr<HSCPlazGit> git;

    HSCPlazDebugLog::inside(self);
    if (type != HSCPlazTypes::GIT) {
        HSCPlazDebugLog::inside(self, " returning nullptr");
        return nullptr;
    }
    HSCPlazDebugLog::inside(self, "type matched to git");
    if (git) {
        HSCPlazDebugLog::inside(self, " git repo ptr already initialized");
    } else {
        HSCPlazDebugLog::inside(self, "git repo ptr not initialized yet");
        git = std::make_unique<HSCPlazGit>();
    }
    return git.get();
}
