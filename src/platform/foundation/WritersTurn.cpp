#include "platform/foundation/WritersTurn.h"

#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/InputOutput.h"
#include "platform/posix/ProcessTable.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr std::chrono::milliseconds pause{20};

/// Who has the lock, as it wrote into the file: "brindle (process 708)".
std::string holderOf(const std::string& file) {
    pid_t process = 0;
    std::ifstream(file) >> process;
    const std::string program = process > 0 ? programNameOf(process) : std::string();
    return program.empty() ? "brindle" : program + " (process " + std::to_string(process) + ")";
}

void logMissingLock(const std::string& file, int error) {
    NSLog("Another Brindle may make changes at the same time: %@.",
          Status::ofErrno("cannot lock", file, error).text());
}

} // namespace

Status WritersTurn::take(int seconds) {
    const std::string& file = Host::current().services().writersFile;
    if (lock_.isOpen() || file.empty()) {
        return {};
    }
    std::error_code ignored; // without the folder, opening the file fails
    std::filesystem::create_directories(std::filesystem::path(file).parent_path(), ignored);
    FileDescriptor lock(::open(file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!lock.isOpen()) {
        logMissingLock(file, errno);
        return {};
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            logMissingLock(file, errno);
            return {};
        }
        if (std::chrono::steady_clock::now() >= end) {
            return Status::failure(
                NSLocalizedString("nothing was changed"), "",
                stringWithFormat(
                    NSLocalizedString("%@ has been making changes for %d seconds, or waits for an answer; "
                                      "answer it or wait until it has ended, and try again"),
                    holderOf(file), seconds));
        }
        std::this_thread::sleep_for(pause);
    }
    // Only for the sentence above: whoever cannot read a number there names no process.
    if (::ftruncate(lock.get(), 0) == 0) {
        static_cast<void>(writeAll(lock.get(), std::to_string(::getpid()) + "\n", file));
    }
    lock_ = std::move(lock);
    return {};
}

Status WritersTurn::takeForGood(int seconds) {
    isForGood_ = true;
    return take(seconds);
}

void WritersTurn::endAction() {
    if (!isForGood_) {
        lock_.reset();
    }
}

} // namespace platform
