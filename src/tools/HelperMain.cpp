#include "platform/commandline/CommandLine.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/SystemServices.h"
#include "platform/posix/Secret.h"
#include "platform/security/HelperLauncher.h"
#include "tools/Helper.h"
#include "tools/HelperComplaint.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int kNotStarted = platform::HelperLauncher::notStartedStatus;

/// Nothing that the program that started this one had open can be reached from here on. What is missing of
/// the first three is filled up, so that no file opened later takes the place of a standard stream.
void closeInheritedDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", O_RDWR) != descriptor) {
            std::abort();
        }
    }
    ::closefrom(STDERR_FILENO + 1);
}

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return; // nobody listens, and there is nobody to tell
        }
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

int refuse(const std::string& why) {
    writeAll(STDERR_FILENO, "brindle-helper: " + why + "\n");
    return kNotStarted;
}

/// All of standard input; none when it is larger than a request may be.
std::optional<std::string> readInput() {
    std::string bytes(platform::HelperLauncher::maximumRequest + 1, '\0');
    std::size_t size = 0;
    while (size < bytes.size()) {
        const ssize_t count = ::read(STDIN_FILENO, bytes.data() + size, bytes.size() - size);
        if (count == 0) {
            bytes.resize(size);
            return bytes;
        }
        if (count < 0 && errno != EINTR) {
            return std::nullopt;
        }
        size += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    platform::wipe(bytes);
    return std::nullopt;
}

/// The user who called sudo; none when sudo did not start this.
std::optional<uid_t> sudoUser() {
    const char* const text = std::getenv("SUDO_UID");
    if (text == nullptr) {
        return std::nullopt;
    }
    uid_t user = 0;
    const std::string_view digits(text);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), user);
    return error == std::errc() && end == digits.data() + digits.size() ? std::optional(user) : std::nullopt;
}

/// Why the options are not served; empty when they are, and `place` says then what to work on.
std::string placeOf(const platform::HostOptions& options, HelperPlace& place) {
    place = {options.root, ::getuid()};
    if (options.system) {
        const auto user = sudoUser();
        place.user = user.value_or(place.user);
        return user && ::geteuid() == 0 ? "" : "--system is served through sudo only";
    }
    if (options.root.empty()) {
        return "Brindle starts it with --root DIR or --system";
    }
    return std::getenv("SUDO_UID") == nullptr ? ""
                                              : "--root is served as the user only; start it without sudo";
}

HelperResult runGuarded(const HelperPlace& place, const HelperRequest& request) {
    try {
        platform::Services services;
        services.log = std::make_shared<platform::SystemLog>(); // the tools may log what they cannot read
        const platform::Host host(std::move(services));
        return runHelperTool(place, request);
    } catch (const std::exception& error) {
        return {complaint("brindle-helper", request.tool, error.what()), "", 1};
    }
}

} // namespace

int helperMain(int argc, char** argv) {
    closeInheritedDescriptors();
    ::umask(S_IWGRP | S_IWOTH);
    std::signal(SIGPIPE, SIG_IGN); // work once begun is finished, whether or not anybody listens
    platform::HostOptions options;
    const auto parser = platform::makeParser(
        "brindle-helper", "Runs one tool for Brindle; the request comes on standard input.", "", options);
    const auto words = platform::argumentsOf(argc, argv);
    if (const auto end = platform::parse(*parser, {words.begin(), words.end()})) {
        return end->print();
    }
    HelperPlace place;
    if (const std::string fault = placeOf(options, place); !fault.empty()) {
        return platform::complain(*parser, fault).print();
    }
    auto input = readInput();
    if (!input) {
        return refuse("the request cannot be read, or is larger than 1 MiB");
    }
    auto request = parseHelperRequest(*input);
    platform::wipe(*input);
    if (!request) {
        return refuse("the request is incomplete");
    }
    if (!isHelperTool(request->tool)) {
        return refuse("refuses " + request->tool + ", which is not on its list of tools");
    }
    const char started = platform::HelperLauncher::startedByte;
    if (::write(STDOUT_FILENO, &started, 1) != 1) {
        return refuse("nobody waits for the answer");
    }
    const HelperResult result = runGuarded(place, *request);
    for (std::string& argument : request->arguments) {
        platform::wipe(argument); // one may be a password
    }
    writeAll(STDOUT_FILENO, result.output);
    writeAll(STDERR_FILENO, result.errors);
    return result.status;
}
