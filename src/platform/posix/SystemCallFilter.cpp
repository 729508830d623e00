#include "platform/posix/SystemCallFilter.h"

#include <array>
#include <cerrno>
#include <initializer_list>
#include <memory>

#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace platform {

namespace {

constexpr std::array refusedCalls = {
#ifndef __SANITIZE_ADDRESS__ // the sanitizer's leak check traces the program
    "ptrace",
#endif
    // other processes
    "process_vm_readv", "process_vm_writev", "pidfd_getfd", "kcmp", "process_madvise",
    // the kernel itself, ways around this filter, and rarely used parts of the kernel
    "bpf", "perf_event_open", "userfaultfd", "io_uring_setup", "io_uring_enter", "io_uring_register",
    "kexec_load", "kexec_file_load", "init_module", "finit_module", "delete_module", "create_module",
    "add_key", "request_key", "keyctl", "syslog", "lookup_dcookie", "modify_ldt", "vm86", "vm86old", "iopl",
    "ioperm", "pciconfig_read", "pciconfig_write", "pciconfig_iobase",
    // mounts and namespaces
    "mount", "umount", "umount2", "pivot_root", "chroot", "move_mount", "open_tree", "fsopen", "fsconfig",
    "fsmount", "fspick", "mount_setattr", "unshare", "setns",
    // files, bypassing the privileges of their folders
    "open_by_handle_at", "fanotify_init", "quotactl", "quotactl_fd",
    // the computer
    "reboot", "swapon", "swapoff", "acct", "sethostname", "setdomainname", "settimeofday", "stime",
    "clock_settime", "clock_settime64", "clock_adjtime", "clock_adjtime64", "adjtimex", "nfsservctl",
    "vhangup"};

#ifdef __s390__
constexpr unsigned cloneFlags = 1;
#else
constexpr unsigned cloneFlags = 0; // the index of the argument
#endif

struct FilterRelease {
    void operator()(void* filter) const { ::seccomp_release(filter); }
};

/// Builds the filter.
class Filter {
  public:
    Filter() : filter_(::seccomp_init(SCMP_ACT_ALLOW)) {
        // The rules do not cover calls with the numbers of another architecture.
        note(filter_ ? ::seccomp_attr_set(filter_.get(), SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_ERRNO(EPERM))
                     : -ENOMEM);
    }

    void refuse(const char* name, int error = EPERM, std::initializer_list<scmp_arg_cmp> when = {}) {
        const int call = ::seccomp_syscall_resolve_name(name);
        if (filter_ && call != __NR_SCMP_ERROR) { // the library may be too old to know the call
            note(::seccomp_rule_add_array(filter_.get(), SCMP_ACT_ERRNO(error), call,
                                          static_cast<unsigned>(when.size()), when.begin()));
        }
    }

    [[nodiscard]] bool load() {
        if (isWhole_) {
            note(::seccomp_load(filter_.get()));
        }
        return isWhole_;
    }

  private:
    void note(int result) { isWhole_ = isWhole_ && result == 0; }

    std::unique_ptr<void, FilterRelease> filter_;
    bool isWhole_ = true;
};

} // namespace

bool takeSystemCallFilter() {
    Filter filter;
    for (const char* name : refusedCalls) {
        filter.refuse(name);
    }
    for (const int space : {CLONE_NEWUSER, CLONE_NEWNS, CLONE_NEWNET, CLONE_NEWPID, CLONE_NEWIPC,
                            CLONE_NEWUTS, CLONE_NEWCGROUP}) {
        const auto flag = static_cast<scmp_datum_t>(space);
        filter.refuse("clone", EPERM, {{cloneFlags, SCMP_CMP_MASKED_EQ, flag, flag}});
    }
    filter.refuse("clone3", ENOSYS); // its flags cannot be checked; callers fall back to clone
    filter.refuse("socket", EAFNOSUPPORT, {{0, SCMP_CMP_NE, AF_UNIX, 0}});
    constexpr scmp_datum_t number = 0xffffffff; // the part that the kernel looks at
    filter.refuse("ioctl", EPERM,
                  {{1, SCMP_CMP_MASKED_EQ, number, TIOCSTI}}); // would type in the user's terminal
    return filter.load();
}

} // namespace platform
