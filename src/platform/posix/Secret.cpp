#include "platform/posix/Secret.h"

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/InputOutput.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/resource.h>

namespace platform {

void leaveNoCore() {
    // When cores are piped to a program, a limit of 0 has no effect, but a limit of 1 byte prevents them
    // (core(5), and do_coredump in the kernel). Either prevents core files.
    rlimit limit{1, 1};
    if (rlimit before{}; ::getrlimit(RLIMIT_CORE, &before) == 0) {
        limit.rlim_cur = limit.rlim_max = std::min<rlim_t>(before.rlim_max, 1);
    }
    ::setrlimit(RLIMIT_CORE, &limit);
    // In case the limit was 0 already: leave all writable memory out of a core.
    const FileDescriptor filter(::open("/proc/self/coredump_filter", O_WRONLY | O_CLOEXEC));
    static_cast<void>(writeAll(filter.get(), "0", {})); // without that file only the limit applies
}

} // namespace platform
