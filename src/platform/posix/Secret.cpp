#include "platform/posix/Secret.h"

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/InputOutput.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/resource.h>

namespace platform {

void leaveNoCore() {
    // Where cores are piped to a program, a limit of no bytes holds nothing back, but one of a single byte
    // does (core(5), and the kernel's do_coredump). No file is written with either.
    rlimit limit{1, 1};
    if (rlimit before{}; ::getrlimit(RLIMIT_CORE, &before) == 0) {
        limit.rlim_cur = limit.rlim_max = std::min<rlim_t>(before.rlim_max, 1);
    }
    ::setrlimit(RLIMIT_CORE, &limit);
    // For where it was none already: a core without any of the memory that programs write to.
    const FileDescriptor filter(::open("/proc/self/coredump_filter", O_WRONLY | O_CLOEXEC));
    static_cast<void>(writeAll(filter.get(), "0", {})); // where there is no such file, the limit stands alone
}

} // namespace platform
