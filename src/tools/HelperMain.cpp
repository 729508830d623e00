#include "platform/commandline/CommandLine.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/SystemServices.h"
#include "platform/posix/InputOutput.h"
#include "platform/posix/Secret.h"
#include "platform/posix/SystemCallFilter.h"
#include "platform/security/HelperFile.h"
#include "platform/security/HelperProtocol.h"
#include "tools/Helper.h"
#include "tools/HelperComplaint.h"
#include "tools/SudoUser.h"
#include "tools/ToolText.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tools {

namespace {

/// Closes everything that the starting program left open. Missing standard streams are opened on /dev/null,
/// so that no file that is opened later becomes a standard stream.
void closeInheritedDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", O_RDWR) != descriptor) {
            std::abort();
        }
    }
    ::closefrom(STDERR_FILENO + 1);
}

/// Ignores failures: if nobody reads the output, there is nobody to tell.
void say(int descriptor, std::string_view text) {
    static_cast<void>(platform::writeAll(descriptor, text, {}));
}

void complain(const std::string& what) {
    say(STDERR_FILENO, oneLine("brindle-helper: " + what));
}

int giveUp(const std::string& why) {
    complain(why);
    return platform::helperGaveUpStatus;
}

/// Fills in `place` from the options. Returns why the options cannot be served, or "".
std::string placeOf(const platform::HostOptions& options, HelperPlace& place) {
    if (options.system) {
        place = {"", sudoUser().value_or(::getuid()), options.root};
        if (sudoUser() && !options.root.empty()) {
            // A user whom sudo lets run this must not make root work in folders of that user's own.
            auto folder = platform::rootsFolder(options.root);
            if (!folder.isOk()) {
                return folder.status().text();
            }
            place.systemPrefix = std::move(*folder);
        }
        return ::geteuid() == 0 ? "" : "--system is served as root only; start it through sudo";
    }
    place = {options.root, ::getuid(), ""};
    if (options.root.empty()) {
        return "Brindle starts it with --root DIR or --system";
    }
    return std::getenv("SUDO_UID") == nullptr ? ""
                                              : "--root is served as the user only; start it without sudo";
}

/// Runs a tool; an exception becomes its error message.
template <class Run>
HelperResult guarded(const std::string& tool, Run run) {
    try {
        return run();
    } catch (const std::exception& error) {
        return {complaint("brindle-helper", platform::Status::failure("cannot run", tool, error.what())), "",
                1};
    }
}

void wipeArguments(HelperRequest& request) {
    for (std::string& argument : request.arguments) {
        platform::wipe(argument); // one of them may be a password
    }
}

/// False when nobody reads the output.
bool sayStarted() {
    const char started = platform::helperStarted;
    return platform::writeAll(STDOUT_FILENO, {&started, 1}, "the started byte").isOk();
}

/// Fills `bytes` from the input; false when the input ends first.
bool readExactly(std::string& bytes) {
    std::size_t size = 0;
    while (size < bytes.size()) {
        const ssize_t count = ::read(STDIN_FILENO, bytes.data() + size, bytes.size() - size);
        if (count == 0 || (count < 0 && errno != EINTR)) {
            return false;
        }
        size += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return true;
}

void reply(const HelperResult& result) {
    say(STDERR_FILENO, result.errors);
    say(STDOUT_FILENO,
        platform::frameHeader(result.output.size()) + result.output + static_cast<char>(result.status));
}

/// Waits for the next request. False when none comes for too long.
bool isAsked() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    int ready = 0;
    do {
        ready = ::poll(&input, 1, static_cast<int>(platform::helperIdleLimit.count()));
    } while (ready < 0 && errno == EINTR);
    return ready != 0;
}

/// Serves requests until the input ends or none comes for too long. Then what was not committed is undone.
int serve(const HelperPlace& place) {
    HelperTools tools(place);
    std::string header(platform::frameHeaderSize, '\0');
    while (isAsked() && readExactly(header)) {
        const std::size_t size = platform::frameSize(header);
        if (size > platform::maximumHelperRequest) {
            return giveUp("the request is larger than 1 MiB");
        }
        std::string bytes(size, '\0');
        if (!readExactly(bytes)) {
            return giveUp("the request is incomplete");
        }
        auto request = parseHelperRequest(bytes);
        platform::wipe(bytes);
        if (size > 0 && (!request || !isHelperTool(request->tool))) {
            complain(request ? "refuses " + request->tool + ", which is not on its list of tools"
                             : "refuses a request that does not end with a NUL");
            say(STDOUT_FILENO, std::string(1, platform::helperRefused));
        } else if (!sayStarted()) {
            return giveUp("nobody waits for the answer");
        } else if (size == 0) {
            reply(guarded("commit", [&] { return tools.settle(); }));
        } else {
            reply(guarded(request->tool, [&] { return tools.run(*request); }));
        }
        if (request) {
            wipeArguments(*request);
        }
    }
    return 0;
}

} // namespace

int helperMain(int argc, char** argv) {
    closeInheritedDescriptors();
    platform::leaveNoCore();
    ::prctl(PR_SET_DUMPABLE, 0); // so that the user whom it serves as root cannot look into its memory
    platform::openStandardDescriptors();
    ::umask(S_IWGRP | S_IWOTH);
    // Finish a tool's work even if nobody reads the output, and when Ctrl-C or the end of the terminal, which
    // reach the whole process group, end Brindle: an account program that dies half way leaves the account
    // files in disagreement. The programs inherit this; the helper ends when its input does.
    for (const int signal : {SIGPIPE, SIGINT, SIGQUIT, SIGHUP}) {
        std::signal(signal, SIG_IGN);
    }
    platform::HostOptions options;
    const auto parser = platform::makeParser(
        "brindle-helper", "Runs tools for Brindle; the requests come on standard input.", "", options);
    const auto words = platform::argumentsOf(argc, argv);
    if (const auto end = platform::parse(*parser, {words.begin(), words.end()})) {
        return end->print();
    }
    HelperPlace place;
    if (const std::string fault = placeOf(options, place); !fault.empty()) {
        return platform::complain(*parser, fault).print();
    }
    bool isFiltered = true;
    if (!options.system) {
        // As the user, no program that grants rights is needed, and few of the system's calls.
        ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
        isFiltered = platform::takeSystemCallFilter();
    }
    platform::Services services;
    services.log = std::make_shared<platform::SystemLog>(); // the tools log what they cannot read
    const platform::Host host(std::move(services));
    if (!isFiltered) {
        NSLog("The helper works without a filter of its system calls, because the kernel or libseccomp has "
              "refused it; the user's rights remain its limit.");
    }
    return serve(place);
}

} // namespace tools
