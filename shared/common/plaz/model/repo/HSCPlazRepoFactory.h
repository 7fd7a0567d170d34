#pragma once

#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazTypes.h"

class HSCPlazRepo;

/// Hands out the repository object of a kind of repository.
class PLAZ_API HSCPlazRepoFactory {
public:
    /// The process's one repository object of that kind, made at the first call; the caller must not delete it.
    /// Null for a kind that is not served. To be called from one thread.
    static HSCPlazRepo* createRepo(HSCPlazTypes::HSCPlazRepoType type);
};
