#include "frontends/NSApplicationMain.h"

#include "frontends/Application.h"
#include "frontends/Options.h"
#include "frontends/TableText.h"
#include "frontends/WindowRun.h"
#include "frontends/cli/CommandRun.h"
#include "frontends/script/ScriptRunner.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/Computer.h"
#include "platform/host/EmbeddedHost.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/host/SystemHost.h"
#include "platform/samba/EmbeddedServer.h"
#include "review/DryRun.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include <syslog.h>

namespace {

using frontend::Application;
using frontend::Mode;
using frontend::Options;

/// The log of a scripted run, beside the script's output: standard error is for faults in the script.
class QuietSystemLog : public platform::Log {
  public:
    void write(std::string_view text) override {
        ::syslog(LOG_USER | LOG_NOTICE, "brindle: %.*s", static_cast<int>(text.size()), text.data());
    }
};

platform::Services makeServices(const Options& options) {
    const bool keepsUserDefaults = options.mode == Mode::Window || options.mode == Mode::Script;
    if (options.host.system) {
        platform::SystemHostOptions host;
        host.prefix = options.host.root;
        host.keepsUserDefaults = keepsUserDefaults;
        return platform::makeSystemServices(host);
    }
    platform::EmbeddedHostOptions host;
    host.root = options.host.root;
    host.keepsUserDefaults = keepsUserDefaults;
    return platform::makeEmbeddedServices(host);
}

/// A folder for a root that a dry run would make; removed at the end.
class ScratchRoot {
  public:
    ScratchRoot() = default;

    ~ScratchRoot() {
        std::error_code ignored; // the system sweeps the folder that it stands in
        std::filesystem::remove_all(folder_, ignored);
    }

    ScratchRoot(const ScratchRoot&) = delete;
    ScratchRoot& operator=(const ScratchRoot&) = delete;

    /// Makes the folder.
    [[nodiscard]] const std::string& make() {
        std::string pattern = (std::filesystem::temp_directory_path() / "brindle-root-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make " + pattern + ": " + std::strerror(errno));
        }
        folder_ = pattern;
        return folder_;
    }

  private:
    std::string folder_;
};

/// Services that change nothing.
platform::Services makeDryServices(Options options, ScratchRoot& scratch) {
    if (!options.host.system) {
        std::string& root = options.host.root;
        root = root.empty() ? platform::EmbeddedRoot::defaultFolder() : root;
        if (!std::filesystem::exists(platform::EmbeddedRoot(root).storeFile())) {
            root = scratch.make();
        }
    }
    const auto services = review::servicesOnCopies(makeServices(options));
    if (!services.isOk()) {
        throw std::runtime_error(services.status().text());
    }
    return *services;
}

/// The file server that --serve asks for, running; null when it was not asked for. Throws when it cannot run.
std::unique_ptr<platform::EmbeddedServer> startServer(const Options& options) {
    if (!options.serve) {
        return nullptr;
    }
    const std::string folder =
        options.host.root.empty() ? platform::EmbeddedRoot::defaultFolder() : options.host.root;
    auto server = std::make_unique<platform::EmbeddedServer>(platform::EmbeddedRoot(folder).sambaPaths());
    const auto status = server->start(options.port.value_or(platform::EmbeddedServer::defaultPort));
    if (!status.isOk()) {
        throw std::runtime_error(status.text());
    }
    std::cerr << "brindle: the shares are served at " << server->address() << '\n';
    return server;
}

/// Says to whoever has no window to read it in what the computer lacks.
void tellWhatIsMissing() {
    const auto& computer = platform::Host::current().services().computer;
    const std::string missing = computer ? computer->whatIsMissing() : std::string();
    if (!missing.empty()) {
        std::cerr << "brindle: " << missing << '\n';
    }
}

int runScript(const Options& options) {
    const bool readsStandardInput = options.script == "-";
    std::ifstream file;
    if (!readsStandardInput) {
        errno = 0;
        file.open(options.script);
        if (!file) {
            throw std::runtime_error("the script " + options.script +
                                     " cannot be read: " + std::strerror(errno));
        }
    }
    ScratchRoot scratch;
    platform::Services services = options.dryRun ? makeDryServices(options, scratch) : makeServices(options);
    const auto output = std::make_shared<frontend::ScriptOutput>(std::cout);
    services.log = std::make_shared<frontend::ScriptLog>(
        output, options.dryRun ? nullptr : std::make_shared<QuietSystemLog>());
    const auto presenter = std::make_shared<frontend::ScriptPresenter>(output);
    Application application(std::move(services));
    application.setPresenter(presenter);
    tellWhatIsMissing();
    const auto server = startServer(options);
    frontend::ScriptRunner runner(
        options.script, readsStandardInput ? std::cin : file, output, presenter,
        [&] {
            application.load();
            application.launch();
        },
        std::cerr);
    runner.useReviewer([&] { return application.reviewer(); });
    runner.useHistory(application.history());
    return runner.run();
}

std::string tableName(const std::string& printed) {
    return printed == "shares" ? "normalTableView" : printed == "users" ? "userTableView" : "groupTableView";
}

int printTable(const Options& options) {
    Application application(makeServices(options));
    application.setPresenter(std::make_shared<frontend::SilentPresenter>());
    tellWhatIsMissing();
    application.load();
    application.launch();
    if (NSApp().isTerminated()) {
        throw std::runtime_error("nothing was printed: Brindle does not run on this version of the system");
    }
    const std::string text = frontend::tableText(application.table(tableName(options.table)));
    application.end();
    std::cout << text << std::flush;
    if (!std::cout) {
        throw std::runtime_error("standard output cannot be written");
    }
    return 0;
}

int openWindow(const Options& options, char** argv) {
    Application application(makeServices(options));
    const auto server = startServer(options);
    return options.mode == Mode::Window ? frontend::runWindow(application, argv)
                                        : frontend::takeSnapshots(application, argv, options.snapshotFolder);
}

int runWithWindow(const Options& options, char** argv) {
    try {
        return openWindow(options, argv);
    } catch (const std::exception& error) {
        if (options.mode == Mode::Window) {
            frontend::showStartFailure(error.what(), argv);
        }
        throw;
    }
}

/// What the system logs while a command runs is for the log that is kept.
int runCommand(const Options& options) {
    platform::Services services = makeServices(options);
    services.log = std::make_shared<QuietSystemLog>();
    std::optional<platform::SambaPaths> rootServer;
    if (!options.host.system) {
        const std::string& root = options.host.root;
        rootServer = platform::EmbeddedRoot(root.empty() ? platform::EmbeddedRoot::defaultFolder() : root)
                         .sambaPaths();
    }
    Application application(std::move(services));
    const auto presenter = std::make_shared<frontend::CommandPresenter>(options.command.saysYes);
    application.setPresenter(presenter);
    if (options.command.needsApplication) {
        application.load();
        application.launch();
        if (application.reviewer() != nullptr) {
            application.reviewer()->setQuestion(&review::Reviewer::askAboutWarnings);
        }
    }
    presenter->begin();
    const int status = frontend::CommandRun({options.command, *presenter, application.reviewer(),
                                             application.history(), rootServer})
                           .run();
    application.end();
    return status;
}

int run(const Options& options, char** argv) {
    if (options.end) {
        return options.end->print();
    }
    switch (options.mode) {
    case Mode::Script:
        return runScript(options);
    case Mode::Command:
        return runCommand(options);
    case Mode::Print:
        return printTable(options);
    case Mode::Window:
    case Mode::Snapshot:
        return runWithWindow(options, argv);
    }
    throw std::logic_error("no such mode");
}

} // namespace

int NSApplicationMain(int argc, char** argv) {
    // A reader that goes away, or a tool that ends early, is seen where it is written to.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const auto arguments = platform::argumentsOf(argc, argv);
        return run(frontend::parseOptions({arguments.begin(), arguments.end()}), argv);
    } catch (const std::exception& error) {
        std::cerr << "brindle: " << error.what() << '\n';
        return 1;
    }
}
