#include "frontends/NSApplicationMain.h"

#include "frontends/Application.h"
#include "frontends/OneWindow.h"
#include "frontends/Options.h"
#include "frontends/TableText.h"
#include "frontends/WindowRun.h"
#include "frontends/cli/CommandRun.h"
#include "frontends/cli/Interruption.h"
#include "frontends/script/ScriptRunner.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/Computer.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/WritersTurn.h"
#include "platform/host/EmbeddedHost.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/host/InstalledFiles.h"
#include "platform/host/SystemHost.h"
#include "platform/posix/InputOutput.h"
#include "platform/posix/ProcessTable.h"
#include "platform/posix/Secret.h"
#include "platform/posix/TemporaryFolder.h"
#include "platform/samba/EmbeddedServer.h"
#include "review/DirectoryState.h"
#include "review/DryRun.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <utility>

#include <syslog.h>
#include <unistd.h>

namespace {

using frontend::Application;
using frontend::Mode;
using frontend::Options;
using platform::Result;
using platform::Status;

/// The log of a scripted run, in addition to the script's output: standard error is for faults in the script.
class QuietSystemLog : public platform::Log {
  public:
    void write(std::string_view text) override {
        ::syslog(LOG_USER | LOG_NOTICE, "brindle: %.*s", static_cast<int>(text.size()), text.data());
    }
};

Result<platform::Services> makeServices(const Options& options) {
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

/// Services that change nothing. A root that is missing is made in `scratch`.
Result<platform::Services> makeDryServices(Options options,
                                           std::optional<platform::TemporaryFolder>& scratch) {
    if (!options.host.system) {
        std::string& root = options.host.root;
        root = root.empty() ? platform::EmbeddedRoot::defaultFolder() : root;
        if (!std::filesystem::exists(platform::EmbeddedRoot(root).storeFile())) {
            auto made = platform::TemporaryFolder::make("dry-run");
            if (!made.isOk()) {
                return made.status();
            }
            scratch.emplace(std::move(*made));
            const std::string named = platform::EmbeddedRoot(root).folder();
            root = scratch->path() + "/root"; // a root locks its own folder, and so does the temporary one
            if (Status status = platform::EmbeddedRoot(root).makeIfMissing(named); !status.isOk()) {
                return status;
            }
        }
    }
    auto real = makeServices(options);
    if (!real.isOk()) {
        return real;
    }
    Status directory;
    auto services = review::servicesOnCopies(*real, options.host.system ? "" : options.host.root, &directory);
    if (services.isOk() && !directory.isOk()) {
        std::cerr << "brindle: " << directory.text()
                  << '\n'; // the script sees empty lists, as the real one does
    }
    return services;
}

using Server = std::unique_ptr<platform::EmbeddedServer>;

/// Starts the file server for --serve; returns null without that option.
Result<Server> startServer(const Options& options) {
    if (!options.serve) {
        return Server();
    }
    const std::string folder =
        options.host.root.empty() ? platform::EmbeddedRoot::defaultFolder() : options.host.root;
    auto server = std::make_unique<platform::EmbeddedServer>(platform::EmbeddedRoot(folder).sambaPaths());
    if (Status status = server->start(options.port.value_or(platform::EmbeddedServer::defaultPort));
        !status.isOk()) {
        return status;
    }
    std::cerr << "brindle: the shares are served at " << server->address() << '\n';
    return server;
}

/// Says on standard error what the computer lacks, for runs without a window.
void tellWhatIsMissing() {
    const auto& computer = platform::Host::current().services().computer;
    const std::string missing = computer ? computer->whatIsMissing() : std::string();
    if (!missing.empty()) {
        std::cerr << "brindle: " << missing << '\n';
    }
}

Result<int> runScript(const Options& options) {
    const bool readsStandardInput = options.script == "-";
    std::ifstream file;
    if (!readsStandardInput) {
        errno = 0;
        file.open(options.script);
        if (!file) {
            return Status::ofErrno("the script " + options.script + " cannot be read", "", errno);
        }
    }
    std::optional<platform::TemporaryFolder> scratch;
    auto services = options.dryRun ? makeDryServices(options, scratch) : makeServices(options);
    if (!services.isOk()) {
        return services.status();
    }
    services->languages = platform::languagesOfLocale(); // a desktop's LANGUAGE is not meant for scripts
    services->writersFile.clear(); // a script does what the operations do and nothing else
    const auto output = std::make_shared<frontend::ScriptOutput>(std::cout);
    services->log = std::make_shared<frontend::ScriptLog>(
        output, std::cerr, options.dryRun ? nullptr : std::make_shared<QuietSystemLog>());
    const auto presenter = std::make_shared<frontend::ScriptPresenter>(output);
    Application application(std::move(*services));
    application.setPresenter(presenter);
    tellWhatIsMissing();
    const auto server = startServer(options);
    if (!server.isOk()) {
        return server.status();
    }
    frontend::ScriptRunner runner(
        options.script, readsStandardInput ? std::cin : file, output, presenter,
        [&] {
            Status status = application.load();
            if (status.isOk()) {
                application.launch();
            }
            return status;
        },
        std::cerr);
    runner.useReviewer([&] { return application.reviewer(); });
    runner.useHistory(application.history());
    return runner.run();
}

Result<int> exitStatusOf(Status status) {
    return status.isOk() ? Result<int>(0) : Result<int>(std::move(status));
}

std::string tableName(const std::string& printed) {
    return printed == "shares" ? "normalTableView" : printed == "users" ? "userTableView" : "groupTableView";
}

/// Returns why the table does not show all there is; empty when it does.
std::string whatLacks(const Application& application, const std::string& printed) {
    const SMBConf* conf = printed == "shares" ? application.reviewer()->smbConf() : nullptr;
    return conf != nullptr && !conf->unreadableReason().empty()
               ? "smb.conf cannot be read: " + conf->unreadableReason()
               : review::directoryNotice();
}

Status printTable(const Options& options) {
    auto services = makeServices(options);
    if (!services.isOk()) {
        return services.status();
    }
    services->languages = {"English"}; // programs that read the table expect its words
    Application application(std::move(*services));
    application.setPresenter(std::make_shared<platform::SilentPresenter>());
    tellWhatIsMissing();
    if (Status status = application.load(); !status.isOk()) {
        return status;
    }
    application.launch();
    if (NSApp().isTerminated()) {
        return Status::failure("nothing was printed", "",
                               "Brindle does not run on this version of the system");
    }
    frontend::writeTable(application.table(tableName(options.table)), std::cout);
    std::cout << std::flush;
    const std::string lacking = whatLacks(application, options.table);
    application.end();
    if (!std::cout) {
        return Status::failure("nothing was printed", "", "standard output cannot be written");
    }
    return lacking.empty() ? Status() : Status::failure("the table is not complete", "", lacking);
}

/// Returns what the window says about the server for --serve. A port that is in use must not prevent the
/// window.
frontend::ShareServer shareServer(const Options& options, const Result<Server>& server) {
    if (!server.isOk()) {
        return {"", server.status().text(), true};
    }
    if (*server) {
        const std::string address = (*server)->address();
        const auto runs = [process = (*server)->processId()] { return platform::isRunning(process); };
        return {address, stringWithFormat(NSLocalizedString("SMB server at %@"), address), false, runs};
    }
    if (options.host.system) {
        std::array<char, 256> name{};
        const bool isKnown = ::gethostname(name.data(), name.size() - 1) == 0;
        const auto runs = [computer = platform::Host::current().services().computer] {
            const platform::ServerLine line = computer->smbServer();
            return !line.text.empty() && !line.canBeStarted;
        };
        return {std::string("smb://") + (isKnown ? name.data() : "localhost") + "/", "", false, runs};
    }
    return {"", NSLocalizedString("No server: start Brindle with --serve to reach the shares."), false};
}

/// Returns what the doctor has to know of the host.
accesscheck::ExaminedHost examinedHostOf(const platform::HostOptions& options) {
    accesscheck::ExaminedHost host{std::nullopt, frontend::calledFor(options)};
    if (!options.system) {
        host.root = platform::EmbeddedRoot(options.root.empty() ? platform::EmbeddedRoot::defaultFolder()
                                                                : options.root)
                        .sambaPaths();
    }
    return host;
}

Result<int> openWindow(const Options& options, frontend::WindowRun& window) {
    const std::string place = frontend::placeOf(options.host);
    auto taken = frontend::OneWindow::take(place);
    if (taken.isOk() && *taken == nullptr) {
        std::cout << "Brindle is already open on " << place << "; its window has come to the front.\n";
        if (options.serve) {
            std::cout << "No server was started: --serve is for the start that opens the window.\n";
        }
        return 0;
    }
    if (!taken.isOk() && taken.status().systemError() == 0) {
        return taken.status();
    }
    if (!taken.isOk()) {
        std::cerr << "brindle: a second start will not find this window: " << taken.status().text() << '\n';
    }
    const auto only = std::move(taken).valueOr(nullptr); // until the very end: only one process works there
    auto services = makeServices(options);
    if (!services.isOk()) {
        return services.status();
    }
    Application application(std::move(*services));
    application.setExaminedHost(examinedHostOf(options.host));
    const auto server = startServer(options);
    return window.show(application, shareServer(options, server), only.get());
}

Result<int> runWindow(const Options& options, frontend::WindowRun& window) {
    Result<int> result = openWindow(options, window);
    if (!result.isOk()) {
        window.showFailure(result.status().text());
    }
    return result;
}

Status takeSnapshots(const Options& options, frontend::WindowRun& window) {
    auto services = makeServices(options);
    if (!services.isOk()) {
        return services.status();
    }
    Application application(std::move(*services));
    application.setExaminedHost(examinedHostOf(options.host));
    return window.takeSnapshots(application, options.snapshotFolder);
}

/// Executes the program with the window: the installed one (../libexec), or the one in this program's folder,
/// as in a build. Returns only on failure.
Status becomeWindow(char** argv) {
    for (const char* place : {"/../libexec/brindle-window", "/brindle-window"}) {
        ::execv((platform::programFolder() + place).c_str(), argv);
        if (errno != ENOENT) {
            return Status::ofErrno("cannot open the window", "brindle-window", errno);
        }
    }
    return Status::failure("this build has no window", "",
                           "install Qt 6 Widgets and build again, or use --print or --script");
}

/// Runs a command. What is logged meanwhile only goes to the system's log.
Result<int> runCommand(const Options& options) {
    auto services = makeServices(options);
    if (!services.isOk()) {
        return services.status();
    }
    services->log = std::make_shared<QuietSystemLog>();
    frontend::Interruption interruption; // outlives all that is tidied up before the program ends by a signal
    Application application(std::move(*services));
    const auto presenter = std::make_shared<frontend::CommandPresenter>(options.command.saysYes);
    application.setPresenter(presenter);
    frontend::CommandOptions command = options.command;
    if (command.kind == frontend::CommandKind::Writing && !command.isDryRun) {
        // Before smb.conf is read: what others write later would be lost.
        const Status status = platform::Host::current().sharedInstance<platform::WritersTurn>().takeForGood(
            platform::WritersTurn::runSeconds);
        if (!status.isOk()) {
            command.needsApplication = false;
            command.carryOut = [text = status.text()](frontend::CommandRun& /*run*/) {
                frontend::CommandRun::fail(text);
            };
        }
    }
    if (command.needsApplication) {
        if (Status status = application.load(); !status.isOk()) {
            return status;
        }
        application.launch();
        application.reviewer()->setQuestion(&review::Reviewer::askAboutWarnings);
        application.reviewer()->setServesPerson(true);
    }
    presenter->begin();
    if (command.kind == frontend::CommandKind::Writing) {
        presenter->stopWith(application.history());
        interruption.begin();
    }
    const int status = frontend::CommandRun({command, *presenter, application.reviewer(),
                                             application.history(), examinedHostOf(options.host)})
                           .run();
    application.end();
    return status;
}

Result<int> run(const Options& options, char** argv, frontend::WindowRun* window) {
    if (options.end) {
        return options.command.printsJSON && options.end->status != 0
                   ? frontend::tellFailure({frontend::CommandStatus::WrongUse, options.end->text}, true)
                   : options.end->print();
    }
    if (window == nullptr && (options.mode == Mode::Window || options.mode == Mode::Snapshot)) {
        return becomeWindow(argv);
    }
    switch (options.mode) {
    case Mode::Script:
        return runScript(options);
    case Mode::Command:
        return runCommand(options);
    case Mode::Print:
        return exitStatusOf(printTable(options));
    case Mode::Window:
        return runWindow(options, *window);
    case Mode::Snapshot:
        return exitStatusOf(takeSnapshots(options, *window));
    }
    throw std::logic_error("no such mode");
}

} // namespace

int NSApplicationMain(int argc, char** argv, frontend::WindowRun* window) {
    // The writing code detects a reader that goes away, or a tool that ends early.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // likewise a file that may not grow
    platform::leaveNoCore();       // passwords are typed here
    platform::openStandardDescriptors();
    bool printsJSON = false;
    std::string failure;
    try {
        const auto arguments = platform::argumentsOf(argc, argv);
        const Options options = frontend::parseOptions({arguments.begin(), arguments.end()});
        printsJSON = options.command.printsJSON;
        const auto status = run(options, argv, window);
        if (status.isOk()) {
            return *status;
        }
        failure = status.status().text();
    } catch (const std::exception& error) {
        failure = error.what();
    }
    return frontend::tellFailure({frontend::CommandStatus::Failed, failure}, printsJSON);
}
