#include "platform/posix/Secret.h"

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/InputOutput.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/resource.h>

namespace platform {

void leaveNoCore() {
    // When cores are piped to a program, the kernel ignores a limit of 0 but obeys a limit of 1 (see core(5)
    // and its function do_coredump). With either, no file is written.
    rlimit limit{1, 1};
    if (rlimit before{}; ::getrlimit(RLIMIT_CORE, &before) == 0) {
        limit.rlim_cur = limit.rlim_max = std::min<rlim_t>(before.rlim_max, 1);
    }
    ::setrlimit(RLIMIT_CORE, &limit);
    // In case the limit was already 0: leave all memory that a program can write to out of a core.
    const FileDescriptor filter(::open("/proc/self/coredump_filter", O_WRONLY | O_CLOEXEC));
    static_cast<void>(writeAll(filter.get(), "0", {})); // without that file, the limit must do
}

} // namespace platform
