#include "plaz/model/repo/HSCPlazRepoFactory.h"

#include "plaz/model/HSCPlazLogger.h"
#include "plaz/model/repo/HSCPlazGit.h"

#include <memory>

HSCPlazRepo* HSCPlazRepoFactory::createRepo(HSCPlazTypes::HSCPlazRepoType type) {
    static constexpr const char* self = "HSCPlazRepoFactory::createRepo";
    static std::unique_ptr<HSCPlazGit> git;

    HSCPlazLogger::inside(self);
    if (type != HSCPlazTypes::GIT) {
        HSCPlazLogger::inside(self, " returning nullptr");
        return nullptr;
    }
    HSCPlazLogger::inside(self, "type matched to git");
    if (git) {
        HSCPlazLogger::inside(self, " git repo ptr already initialized");
    } else {
        HSCPlazLogger::inside(self, "git repo ptr not initialized yet");
        git = std::make_unique<HSCPlazGit>();
    }
    return git.get();
}
