#include "platform/foundation/Host.h"
#include "platform/host/EmbeddedHost.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/netinfo/LocalDomain.h"
#include "tools/DirectoryTools.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr int wrongOption = 2;

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

/// What the directory reader logs goes to standard error, which nobody takes for the tool's output.
class ErrorLog : public platform::Log {
  public:
    void write(std::string_view text) override {
        std::fwrite(text.data(), 1, text.size(), stderr);
        if (!text.ends_with('\n')) {
            std::fputc('\n', stderr);
        }
    }
};

class FileDomain : public platform::LocalDomain {
  public:
    explicit FileDomain(std::string file) : file_(std::move(file)) {}

    [[nodiscard]] std::string storeFile() const override { return file_; }

  private:
    std::string file_;
};

void printHelp(const Tool& tool) {
    std::printf("usage: %s [--root DIR | --system] %s\n%s\n\n"
                "  --root DIR   work on the root at DIR ($BRINDLE_ROOT, else ~/.local/share/brindle)\n"
                "  --system     work on this computer's own directory (not built yet)\n"
                "  --help       print this help\n"
                "  --version    print the version\n",
                tool.name.data(), tool.synopsis, tool.summary);
}

struct Options {
    std::string root = platform::EmbeddedRoot::defaultFolder();
    std::span<char*> words;
    std::optional<int> ends; ///< the program ends with this status
};

Options complain(const Tool& tool, const std::string& what) {
    std::fprintf(stderr, "%s: %s; see %s --help\n", tool.name.data(), what.c_str(), tool.name.data());
    Options options;
    options.ends = wrongOption;
    return options;
}

Options readOptions(const Tool& tool, std::span<char*> words) {
    Options options;
    while (!words.empty() && std::string_view(words.front()).starts_with("--")) {
        const std::string_view word = words.front();
        words = words.subspan(1);
        if (word == "--root" && !words.empty() && *words.front() != '\0') {
            options.root = words.front();
            words = words.subspan(1);
        } else if (word == "--root") {
            return complain(tool, "--root needs a folder");
        } else if (word == "--system") {
            return complain(tool, "--system is not built yet");
        } else if (word == "--help") {
            printHelp(tool);
            options.ends = 0;
            return options;
        } else if (word == "--version") {
            std::printf("%s (Brindle) %s\n", tool.name.data(), BRINDLE_VERSION);
            options.ends = 0;
            return options;
        } else {
            return complain(tool, "there is no option " + std::string(word));
        }
    }
    options.words = words;
    return options;
}

void wipePassword(std::string& copy, char* word) {
    ::explicit_bzero(copy.data(), copy.size());
    ::explicit_bzero(word, std::strlen(word));
}

ToolResult run(std::string_view tool, const std::string& rootFolder, std::span<const std::string> arguments) {
    const DirectoryPlace place = DirectoryPlace::ofRoot(rootFolder);
    platform::EmbeddedRoot(rootFolder).makeIfMissing();
    if (tool == "nicl") {
        return runNicl(place, arguments);
    }
    if (tool == "dscl") {
        return runDscl(place, arguments);
    }
    platform::Services services;
    services.log = std::make_shared<ErrorLog>();
    services.localDomain = std::make_shared<FileDomain>(place.storeFile);
    const platform::Host host(std::move(services));
    return tool == "nireport" ? runNireport(arguments) : runNiutil(arguments);
}

} // namespace

int directoryToolMain(const char* tool, int argc, char** argv) {
    const Tool* found = std::begin(tools);
    while (found->name != tool) {
        ++found;
    }
    const Options options = readOptions(*found, std::span(argv, static_cast<std::size_t>(argc)).subspan(1));
    if (options.ends) {
        return *options.ends;
    }
    ToolResult result;
    try {
        std::vector<std::string> arguments(options.words.begin(), options.words.end());
        result = run(found->name, options.root, arguments);
        if (found->name == "dscl" && !arguments.empty()) {
            wipePassword(arguments.back(), options.words.back());
        }
    } catch (const std::runtime_error& error) {
        result = {std::string(tool) + ": " + error.what() + "\n", 1};
    }
    if (std::fwrite(result.output.data(), 1, result.output.size(), stdout) != result.output.size() ||
        std::fflush(stdout) != 0) {
        std::fprintf(stderr, "%s: cannot write the answer; check where the output goes\n", tool);
        return 1;
    }
    return result.status;
}
