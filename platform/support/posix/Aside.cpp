#include "Aside.h"

#include <csignal>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace platform {

pid_t workAside(int flags, const std::function<void()>& work) {
    const auto run = [](void* argument) {
        (*static_cast<const std::function<void()>*>(argument))();
        syscall(SYS_exit, 0); // of this task alone, also where it is a thread
        return 0;
    };
    std::vector<char> stack(std::size_t{1} << 18);
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before); // a handler must not run there
    const pid_t task = clone(run, stack.data() + stack.size(), CLONE_VM | CLONE_VFORK | flags,
                             const_cast<std::function<void()>*>(&work));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return task;
}

} // namespace platform
