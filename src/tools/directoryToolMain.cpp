#include "platform/commandline/CommandLine.h"
#include "platform/foundation/Host.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/posix/InputOutput.h"
#include "platform/posix/Secret.h"
#include "tools/DirectoryTools.h"
#include "tools/SudoUser.h"
#include "tools/ToolText.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <unistd.h>

namespace tools {

namespace {

struct Tool {
    std::string_view name;
    const char* synopsis;
    const char* summary;
};

constexpr Tool tools[] = {
    {"nicl", ". -create|-append|-delete PATH [PROPERTY [VALUE...]]", "Changes records of the directory."},
    {"dscl", ". -passwd /Users/NAME PASSWORD", "Sets the password under which a user connects to shares."},
    {"nireport", ". PATH PROPERTY...", "Prints properties of the records below a path, separated by tabs."},
    {"niutil", "-read . PATH", "Prints a record of the directory."},
};

/// Logs to standard error, so that log lines are not taken for the tool's output.
class ErrorLog : public platform::Log {
  public:
    void write(std::string_view text) override {
        std::fwrite(text.data(), 1, text.size(), stderr);
        if (!text.ends_with('\n')) {
            std::fputc('\n', stderr);
        }
    }
};

std::shared_ptr<platform::LocalDomain> domainAt(const DirectoryPlace& place) {
    if (place.computer) {
        return std::make_shared<platform::ComputersDomain>(place.storeFile);
    }
    return std::make_shared<platform::StoreDomain>(place.storeFile);
}

/// The user who called sudo, or else the user who runs this program.
uid_t caller() {
    return sudoUser().value_or(::getuid());
}

/// The directory that the options name. Makes an embedded root if it is missing.
platform::Result<DirectoryPlace> placeOf(const platform::HostOptions& options, bool writes) {
    if (options.system) {
        if (writes && ::geteuid() != 0) {
            return platform::Status::failure("cannot change", "this computer",
                                             "only its administrator can; run this through sudo");
        }
        return DirectoryPlace::ofComputer(platform::SystemFiles(options.root), caller());
    }
    const platform::EmbeddedRoot root(options.root.empty() ? platform::EmbeddedRoot::defaultFolder()
                                                           : options.root);
    if (platform::Status status = root.makeIfMissing(); !status.isOk()) {
        return status;
    }
    return DirectoryPlace::ofRoot(root.folder());
}

ToolResult run(std::string_view tool, const platform::HostOptions& options,
               std::span<const std::string> arguments) {
    const auto place = placeOf(options, tool == "nicl" || tool == "dscl");
    if (!place.isOk()) {
        return {oneLine(std::string(tool) + ": " + place.status().text()), 1};
    }
    if (tool == "nicl") {
        return runNicl(*place, arguments);
    }
    if (tool == "dscl") {
        return runDscl(*place, arguments);
    }
    platform::Services services;
    services.log = std::make_shared<ErrorLog>();
    services.localDomain = domainAt(*place);
    const platform::Host host(std::move(services));
    return tool == "nireport" ? runNireport(arguments) : runNiutil(arguments);
}

} // namespace

int directoryToolMain(std::string_view name, int argc, char** argv) {
    platform::leaveNoCore(); // dscl gets a password
    platform::openStandardDescriptors();
    const Tool& tool = *std::ranges::find(tools, name, &Tool::name);
    platform::HostOptions options;
    const auto parser = platform::makeParser(std::string(name), tool.summary, tool.synopsis, options);
    const std::span<char*> all = platform::argumentsOf(argc, argv);
    const std::size_t count = platform::countLeadingOptions(*parser, all);
    const auto leading = all.first(count);
    const auto words = all.subspan(count);
    if (const auto end = platform::parse(*parser, {leading.begin(), leading.end()})) {
        return end->print();
    }
    std::vector<std::string> arguments(words.begin(), words.end());
    const bool endsWithPassword = name == "dscl" && !arguments.empty();
    if (endsWithPassword) {
        platform::wipe(
            std::span(words.back(), arguments.back().size())); // other users can read a process's arguments
    }
    ToolResult result;
    try {
        result = run(name, options, arguments);
    } catch (const std::exception& error) {
        result = {std::string(name) + ": " + error.what() + "\n", 1};
    }
    if (endsWithPassword) {
        platform::wipe(arguments.back());
    }
    if (std::fwrite(result.output.data(), 1, result.output.size(), stdout) != result.output.size() ||
        std::fflush(stdout) != 0) {
        std::fprintf(stderr, "%s: cannot write the answer; check where the output goes\n", tool.name.data());
        return 1;
    }
    return result.status;
}

} // namespace tools
