#pragma once

#include "platform/netinfo/Store.h"
#include "platform/posix/FileDescriptor.h"

#include <array>
#include <stdexcept>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

/// Another program that holds the directory's lock for the lifetime of this object. It is not a child of this
/// process, because a child would be taken for its helper.
class LockHolder {
  public:
    explicit LockHolder(const std::string& store) {
        std::array<int, 2> told{};
        std::array<int, 2> end{};
        if (::pipe(told.data()) != 0 || ::pipe(end.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
        const pid_t child = ::fork();
        if (child == 0) {
            if (::fork() == 0) {
                ::close(end[1]);
                hold(store, told[1], end[0]);
            }
            ::_exit(0);
        }
        ::close(told[1]);
        ::close(end[0]);
        end_ = platform::FileDescriptor(end[1]);
        ::waitpid(child, nullptr, 0);
        const platform::FileDescriptor answer(told[0]);
        if (::read(answer.get(), &process_, sizeof process_) != sizeof process_) {
            throw std::runtime_error("the lock could not be taken");
        }
    }

    [[nodiscard]] std::string process() const { return "(process " + std::to_string(process_) + ")"; }

  private:
    [[noreturn]] static void hold(const std::string& file, int told, int end) {
        const platform::Store store(file);
        const pid_t own = ::getpid();
        char nothing = 0;
        if (store.status().isOk() && ::write(told, &own, sizeof own) == sizeof own) {
            while (::read(end, &nothing, 1) > 0) {
            }
        }
        ::_exit(0);
    }

    platform::FileDescriptor end_;
    pid_t process_ = 0;
};
