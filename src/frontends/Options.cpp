#include "frontends/Options.h"

#include "platform/host/EmbeddedRoot.h"
#include "platform/posix/ShellWord.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace frontend {

Options parseOptions(std::vector<std::string> arguments) {
    Options options;
    const auto parser = platform::makeParser(
        "brindle",
        "Administers the file sharing of one computer. Without a command, --script, --print or "
        "--snapshot it opens its window.",
        "", options.host);
    CLI::Option& script =
        platform::addText(*parser, "--script", options.script, "FILE",
                          "Carry out the commands in FILE without a window; - is standard input");
    CLI::Option& print = platform::addText(*parser, "--print", options.table, "shares|users|groups",
                                           "Print the table, and end");
    CLI::Option& snapshot =
        platform::addText(*parser, "--snapshot", options.snapshotFolder, "DIR",
                          "Write a picture of every page of the window into DIR, and end");
    print.check(CLI::IsMember({"shares", "users", "groups"}).description(""))->excludes(&script, &snapshot);
    snapshot.excludes(&script);
    CLI::Option* dryRun = parser->add_flag("--dry-run", options.dryRun,
                                           "Carry the script out on copies: print every line that would be "
                                           "printed, and change nothing");
    dryRun->needs(&script);
    // The server lasts as long as the window or a script. With --system there is the computer's own server.
    CLI::Option* serve = parser->add_flag(
        "--serve", options.serve, "Run a file server for the embedded root for as long as Brindle runs");
    serve->excludes(&print, &snapshot, dryRun, parser->get_option("--system"));
    parser->add_option("--port", options.port, "The server's port (4455)")
        ->type_name("N")
        ->check(CLI::Range(1, 65535).description(""))
        ->needs(serve);
    addCommands(*parser, options.command);
    const bool namesJSON = std::ranges::find(arguments, "--json") != arguments.end();
    options.end = platform::parse(*parser, std::move(arguments));
    for (const CLI::Option* other : {&script, &print, &snapshot, &*dryRun, &*serve}) {
        if (!options.end && options.command.carryOut && other->count() > 0) {
            options.end = platform::complain(*parser, other->get_name() + " cannot be given with a command");
        }
    }
    if (options.end && namesJSON) {
        options.command.printsJSON = true; // parsing may have ended before it
    }
    options.mode = options.command.carryOut ? Mode::Command
                   : script                 ? Mode::Script
                   : print                  ? Mode::Print
                   : snapshot               ? Mode::Snapshot
                                            : Mode::Window;
    return options;
}

std::string calledFor(const platform::HostOptions& host) {
    return std::string("brindle") + (host.system ? " --system" : "") +
           (host.root.empty()
                ? ""
                : " --root " + platform::shellWord(std::filesystem::absolute(host.root).string()));
}

std::string placeOf(const platform::HostOptions& host) {
    if (host.system && host.root.empty()) {
        return "this computer";
    }
    std::filesystem::path folder =
        std::filesystem::absolute(host.root.empty() ? platform::EmbeddedRoot::defaultFolder() : host.root);
    std::error_code error;
    if (const auto real = std::filesystem::weakly_canonical(folder, error); !error) {
        folder = real.has_filename() ? real : real.parent_path();
    }
    return host.system ? "the computer" + (host.root.empty() ? "" : " in " + folder.string())
                       : folder.string();
}

} // namespace frontend
