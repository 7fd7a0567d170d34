#pragma once

#include "BenchData.h"
#include "support/TempDir.h"

#include <string>

class HSCPlaz;

/// Items of the stores that are measured.
constexpr std::size_t storeSizes[] = {100, 1000, 10000};

/// The directory in which the benchmarks work, with the environment that leads the hub to it. One per process; gone
/// with it.
class Workspace {
public:
    static Workspace& get();

    std::string path(const std::string& relative) const { return m_dir.path(relative); }
    /// A data root with one store of that many items, made at the first call.
    std::string dataRootOf(std::size_t items);
    /// Environment of a process that starts from a data root.
    void useDataRoot(const std::string& dir);

    /// The hub of this process: stores "store-100", "store-1000", "store-10000" and "large" (1,000 items, 184 MB), each
    /// with a repository. Made at the first call.
    HSCPlaz& getHub();

private:
    Workspace();

    TempDir m_dir;
    EnvGuard m_env;
    bool m_hasHub = false;
};
