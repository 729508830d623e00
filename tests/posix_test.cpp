#include "platform/posix/InputOutput.h"
#include "platform/posix/Process.h"
#include "platform/posix/Secret.h"
#include "platform/posix/SystemCallFilter.h"
#include "platform/posix/TemporaryFolder.h"
#include "platform/posix/UTF8.h"
#include "platform/posix/WholeFile.h"
#include "support/ScratchVariable.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <optional>
#include <thread>

#include <sched.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using platform::Command;
using platform::ErrorOutput;
using platform::LinkRule;
using platform::runProcess;
using platform::writeWholeFile;

namespace {

Command shell(const std::string& text, ErrorOutput errors = ErrorOutput::Discarded) {
    return {{"/bin/sh", "-c", text}, errors};
}

/// Interrupts every slow system call of this process during its lifetime.
class Interruptions {
  public:
    Interruptions() {
        struct sigaction action {};

        action.sa_handler = [](int) {}; // without SA_RESTART
        ::sigaction(SIGALRM, &action, &before_);
        const itimerval timer{{0, 500}, {0, 500}};
        ::setitimer(ITIMER_REAL, &timer, nullptr);
    }

    ~Interruptions() {
        const itimerval none{};
        ::setitimer(ITIMER_REAL, &none, nullptr);
        ::sigaction(SIGALRM, &before_, nullptr);
    }

    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

  private:
    struct sigaction before_ {};
};

/// More than a pipe can buffer.
const std::string longText = [] {
    std::string text;
    for (int number = 0; number < 100000; ++number) {
        text += std::to_string(number) + "\n";
    }
    return text;
}();

std::string textOf(const fs::path& file) {
    return platform::readWholeFile(file).valueOr("unreadable");
}

struct stat statusOf(const fs::path& file) {
    struct stat status {};

    EXPECT_EQ(::lstat(file.c_str(), &status), 0) << file;
    return status;
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& each : fs::directory_iterator(folder)) {
        names.push_back(each.path().filename());
    }
    std::ranges::sort(names);
    return names;
}

} // namespace

TEST(InputOutput, AShortWriteAndAnInterruptionLoseNothing) {
    auto pipe = platform::makePipe();
    ASSERT_TRUE(pipe.isOk());
    const Interruptions interruptions;
    std::thread writer([&] {
        EXPECT_TRUE(platform::writeAll(pipe->writeEnd.get(), longText, "the pipe").isOk());
        pipe->writeEnd.reset();
    });
    EXPECT_TRUE(platform::readAll(pipe->readEnd.get(), "the pipe").valueOr("") == longText);
    writer.join();
}

TEST(InputOutput, ALimitIsKeptToTheByte) {
    const TestHost host;
    const std::string file = host.root() / "file";
    std::ofstream(file) << "12345";
    const platform::FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_FALSE(platform::readAll(descriptor.get(), file, 4).isOk());
    ::lseek(descriptor.get(), 0, SEEK_SET);
    EXPECT_EQ(platform::readAll(descriptor.get(), file, 5).valueOr(""), "12345");
    const auto missing = platform::readWholeFile(file + ".not");
    EXPECT_EQ(missing.status().systemError(), ENOENT);
    EXPECT_EQ(missing.status().text(), "cannot read " + file + ".not: No such file or directory");
}

TEST(Process, InputOutputErrorsAndStatusArriveWhole) {
    const Interruptions interruptions;
    // Both outputs fill up before the input is read to its end.
    const auto finished = runProcess(shell("tee /dev/stderr; exit 7", ErrorOutput::Apart), longText);
    ASSERT_TRUE(finished.isOk());
    EXPECT_TRUE(finished->output == longText);
    EXPECT_TRUE(finished->errors == longText);
    EXPECT_EQ(finished->status, 7);
    EXPECT_EQ(runProcess(shell("echo a; echo b >&2", ErrorOutput::WithOutput))->output, "a\nb\n");
    EXPECT_EQ(runProcess(shell("kill -9 $$"), longText)->status, 128 + SIGKILL) << "it reads nothing";
    Command command = shell("echo $A$HOME");
    command.environment = {"A=b"};
    EXPECT_EQ(runProcess(command)->output, "b\n");
    EXPECT_EQ(runProcess({{"/missing/program"}}).status().text(),
              "cannot start /missing/program: No such file or directory");
}

TEST(Process, AChildThatWritesWithoutEndIsKilled) {
    const auto finished = runProcess(shell("exec cat /dev/zero"));
    ASSERT_FALSE(finished.isOk());
    EXPECT_EQ(finished.status().systemError(), EFBIG);
}

TEST(Process, ATimeLimitKillsTheChild) {
    const TestHost host;
    const std::string id = host.root() / "id";
    for (const char* silent : {"", "exec >&- 2>&-; "}) { // also one that has closed its output
        const auto begin = std::chrono::steady_clock::now();
        const auto finished =
            runProcess(shell(std::string(silent) + "echo $$ >" + id + "; exec sleep 60"), {}, 200ms);
        EXPECT_EQ(finished.status().systemError(), ETIMEDOUT);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
        EXPECT_NE(::kill(std::stoi(textOf(id)), 0), 0) << "it is still running";
    }
    EXPECT_TRUE(runProcess(shell("sleep 0.01"), {}, 60s).isOk());
}

TEST(Secrets, AreInNoCoreOfWhatAProgramStartsHoweverItMightBeWritten) {
    const TestHost host;
    // Whether a program that crashes there leaves a core, with the largest limit that there may be.
    const auto leavesCore = [&](bool isForbidden) {
        const pid_t child = ::fork();
        if (child == 0) {
            rlimit limit{};
            ::getrlimit(RLIMIT_CORE, &limit);
            limit.rlim_cur = limit.rlim_max;
            ::setrlimit(RLIMIT_CORE, &limit);
            if (isForbidden) {
                platform::leaveNoCore();
            }
            const std::string script = "cd '" + host.root().string() +
                                       "' && cat /proc/self/coredump_filter >filter && kill -ABRT $$";
            ::execl("/bin/sh", "sh", "-c", script.c_str(), nullptr);
            ::_exit(1);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status));
        return WIFSIGNALED(status) && WCOREDUMP(status);
    };
    if (!leavesCore(false)) {
        GTEST_SKIP() << "this computer leaves no cores";
    }
    EXPECT_FALSE(leavesCore(true));
    EXPECT_EQ(textOf(host.root() / "filter"), "00000000\n") << "nor any memory in one";
}

TEST(SystemCallFilter, RefusesWhatWorkOnFilesDoesWithoutAndNothingElse) {
    struct Case {
        const char* name;
        int error; ///< 0: it succeeds, which is 0 or more
        std::function<long()> call;
    };

    const std::vector<Case> cases = {
        {"a namespace", EPERM, [] { return ::syscall(SYS_unshare, 0L); }},
        {"another one", EPERM,
         [] { return ::syscall(SYS_clone, static_cast<long>(CLONE_NEWUSER | SIGCHLD), 0L, 0L, 0L, 0L); }},
        {"a keyring", EPERM, [] { return ::syscall(SYS_keyctl, 0L, -3L, 0L); }}, // this process's own
        {"another process's memory", EPERM,
         [] { return ::syscall(SYS_process_vm_readv, static_cast<long>(::getpid()), 0L, 0L, 0L, 0L, 0L); }},
        {"a mount", EPERM, [] { return ::syscall(SYS_fsopen, "tmpfs", 0L); }},
        {"a network", EAFNOSUPPORT, [] { return ::socket(AF_INET, SOCK_STREAM, 0); }},
        {"a terminal's input", EPERM, [] { return ::ioctl(STDIN_FILENO, TIOCSTI, "x"); }},
        {"a socket of this computer", 0, [] { return ::socket(AF_UNIX, SOCK_STREAM, 0); }},
        {"a thread", 0, [] { return std::thread([] {}).join(), 0; }},
        {"a program", 0,
         [] {
             return -runProcess(shell("exit 0")).valueOr({1, {}, {}}).status;
         }},
    };
    // In a process of its own, which nothing could take the filter from again. 255: no filter here.
    const pid_t child = ::fork();
    if (child == 0) {
        if (!platform::takeSystemCallFilter()) {
            ::_exit(255);
        }
        int failed = 0;
        for (const Case& each : cases) {
            errno = 0;
            const long result = each.call();
            if (each.error == 0 ? result < 0 : result != -1 || errno != each.error) {
                std::cerr << each.name << ": " << result << ", " << std::strerror(errno) << '\n';
                ++failed;
            }
        }
        ::_exit(failed);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 255) {
        GTEST_SKIP() << "this kernel refuses no system calls";
    }
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(WholeFile, LinksOwnersAndModesAreTreatedAsRequested) {
    const TestHost host;
    const fs::path folder = host.root() / "folder";
    fs::create_directory(folder);
    const fs::path file = folder / "file";
    const fs::path link = folder / "link";
    std::ofstream(file) << "old";
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    const gid_t group = ::geteuid() == 0 ? 12345 : ::getegid();
    ASSERT_EQ(::chown(file.c_str(), static_cast<uid_t>(-1), group), 0);
    fs::create_symlink("file", link);

    const auto rewrite = [&](const fs::path& path, const std::string& name) {
        const auto place = platform::FilePlace::find(path, LinkRule::Follow);
        return platform::WaitingFile::write(*place, name.empty() ? place->name() : name, longText,
                                            statusOf(file), 0600)
            ->replace()
            .isOk();
    };
    ASSERT_TRUE(rewrite(link, ""));
    EXPECT_TRUE(textOf(file) == longText);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(statusOf(file).st_mode & 07777U, 0640U);
    EXPECT_EQ(statusOf(file).st_gid, group);
    const auto list = [](const fs::path& of) {
        return runProcess({{"/usr/bin/getfacl", "-cpn", of}})->output;
    };
    ASSERT_TRUE(runProcess({{"/usr/bin/setfacl", "-d", "-m", "u:12346:rw", folder}}).isOk());
    const std::string plain = list(file);
    ASSERT_TRUE(rewrite(file, ""));
    EXPECT_EQ(list(file), plain) << "the folder's list is not for a file that had none";
    ASSERT_TRUE(runProcess({{"/usr/bin/setfacl", "-m", "u:12346:rw", file}}).isOk());
    const std::string listed = list(file);
    ASSERT_TRUE(rewrite(file, ""));
    EXPECT_EQ(list(file), listed) << "the group may still only read, though its bits in the mode say more";
    ASSERT_TRUE(rewrite(file, "copy"));
    EXPECT_EQ(list(folder / "copy"), listed) << "so has a backup";
    fs::remove(folder / "copy");

    ASSERT_TRUE(writeWholeFile(link, "new", {.mode = 0600}).isOk());
    EXPECT_EQ(statusOf(link).st_mode, S_IFREG | 0600U);
    EXPECT_TRUE(textOf(file) == longText) << "the target of the link stays";

    const fs::path dangling = folder / "dangling";
    fs::create_symlink(folder / "fresh", dangling);
    ASSERT_TRUE(writeWholeFile(dangling, "x", {.links = LinkRule::Follow}).isOk());
    EXPECT_EQ(textOf(folder / "fresh"), "x");

    const fs::path loop = folder / "loop";
    fs::create_symlink("loop", loop);
    EXPECT_EQ(writeWholeFile(loop, "x", {.links = LinkRule::Follow}).systemError(), ELOOP);
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"dangling", "file", "fresh", "link", "loop"}));
}

TEST(WholeFile, AFailedWriteLeavesNothingBehind) {
    const TestHost host;
    const fs::path folder = host.root() / "folder";
    fs::create_directories(folder / "target");
    const auto status = writeWholeFile(folder / "target", "bytes"); // the target is a folder
    EXPECT_EQ(status.text(), "cannot write " + (folder / "target").string() + ": Is a directory");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"target"});
    EXPECT_EQ(writeWholeFile(host.root() / "missing" / "file", "bytes").systemError(), ENOENT);
}

TEST(WholeFile, TheNextWriterRemovesWhatAKilledOneLeft) {
    const TestHost host;
    const fs::path folder = host.root() / "folder";
    fs::create_directory(folder);
    std::ofstream(folder / ".brindle-1.tmp") << "half a te";
    std::ofstream(folder / ".brindle-2.tmp") << "the file of a running writer";
    std::ofstream(folder / ".brindle.tmp") << "somebody else's";
    const platform::FileDescriptor alive(::open((folder / ".brindle-2.tmp").c_str(), O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(::flock(alive.get(), LOCK_EX), 0);
    ASSERT_TRUE(writeWholeFile(folder / "file", "text").isOk());
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{".brindle-2.tmp", ".brindle.tmp", "file"}));
}

TEST(TemporaryFolder, TheNextOneRemovesWhatAKilledProcessLeft) {
    const TestHost host;
    std::optional<ScratchVariable> temporary(std::in_place, "TMPDIR", host.root().string());
    fs::create_directories(host.root() / "brindle-test-killed" / "etc");
    fs::create_directory(host.root() / "brindle-other-killed");
    fs::create_directory(host.root() / "brindle-test-by-hand");
    auto alive = platform::TemporaryFolder::make("test");
    {
        const auto next = platform::TemporaryFolder::make("test");
        temporary.reset();
        ASSERT_TRUE(alive.isOk() && next.isOk());
        EXPECT_TRUE(fs::exists(alive->path()) && fs::exists(next->path()));
    }
    const auto names = namesIn(host.root());
    EXPECT_EQ(std::ranges::count_if(names, [](const auto& name) { return name.starts_with("brindle-test"); }),
              2);
    EXPECT_TRUE(fs::exists(host.root() / "brindle-other-killed"));
    EXPECT_TRUE(fs::exists(host.root() / "brindle-test-by-hand"));
}

TEST(WholeFile, SimultaneousWritersLeaveOneWholeText) {
    const TestHost host;
    const fs::path folder = host.root() / "folder";
    fs::create_directory(folder);
    std::vector<std::thread> writers;
    for (char letter = 'a'; letter < 'e'; ++letter) {
        writers.emplace_back([&, letter] {
            for (int round = 0; round < 25; ++round) {
                EXPECT_TRUE(writeWholeFile(folder / "file", std::string(10000, letter)).isOk());
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"file"});
    const std::string text = textOf(folder / "file");
    EXPECT_TRUE(text.size() == 10000 && text == std::string(10000, text.front()));
}

TEST(UTF8, ACharacterIsDecodedStrictly) {
    const std::vector<std::pair<std::string, char32_t>> cases = {{"a", 'a'},
                                                                 {"é", 0xE9},
                                                                 {"€", 0x20AC},
                                                                 {"𝟗", 0x1D7D7},
                                                                 {"\xC0\x80", 0xFFFD},
                                                                 {"\xED\xA0\x80", 0xFFFD},
                                                                 {"\xF4\x90\x80\x80", 0xFFFD},
                                                                 {"\xE2\x82", 0xFFFD}};
    for (const auto& [text, character] : cases) {
        std::size_t offset = 0;
        EXPECT_EQ(platform::nextCharacter(text, offset), character);
        EXPECT_EQ(offset, character == 0xFFFD ? 1U : text.size());
    }
}
