#include "platform/commandline/CommandLine.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/SystemServices.h"
#include "platform/posix/InputOutput.h"
#include "platform/posix/Secret.h"
#include "platform/security/HelperLauncher.h"
#include "tools/Helper.h"
#include "tools/HelperComplaint.h"

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

/// Where nobody listens, there is nobody to tell.
void say(int descriptor, std::string_view text) {
    static_cast<void>(platform::writeAll(descriptor, text, {}));
}

int refuse(const std::string& why) {
    say(STDERR_FILENO, "brindle-helper: " + why + "\n");
    return kNotStarted;
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
        return {
            complaint("brindle-helper", platform::Status::failure("cannot run", request.tool, error.what())),
            "", 1};
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
    auto input = platform::readAll(STDIN_FILENO, "the request", platform::HelperLauncher::maximumRequest);
    if (!input.isOk()) {
        return refuse(input.status().text());
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
    if (!platform::writeAll(STDOUT_FILENO, {&started, 1}, "the started byte").isOk()) {
        return refuse("nobody waits for the answer");
    }
    const HelperResult result = runGuarded(place, *request);
    for (std::string& argument : request->arguments) {
        platform::wipe(argument); // one may be a password
    }
    say(STDOUT_FILENO, result.output);
    say(STDERR_FILENO, result.errors);
    return result.status;
}
