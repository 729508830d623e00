#pragma once

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

// The command line of a program: every program of Brindle takes --root, --system, --help and --version, and
// reports errors in the same way. The program adds its own options and subcommands to the parser.

namespace platform {

/// Which computer a program works on.
struct HostOptions {
    /// The embedded root's folder, empty for the default. With `system`, the prefix of Brindle's own files on
    /// this computer (host/SystemFiles.h), for tests.
    std::string root;
    bool system = false; ///< this computer itself
};

/// What a program prints instead of doing its work.
struct CommandLineEnd {
    static constexpr int wrongOptions = 2;

    int status = 0;      ///< the exit status: 0 for --help and --version, else wrongOptions
    std::string text;    ///< for standard output when the status is 0; else the complaint, for standard error
    std::string program; ///< the program that complains

    /// Prints the text, a complaint after the program's name, and returns the status; 1 when what goes to
    /// standard output cannot be written.
    [[nodiscard]] int print() const;
};

/// The arguments of a program without its name.
[[nodiscard]] std::span<char*> argumentsOf(int argc, char** argv);

/// A parser with the options that every program has. `synopsis` names, for the help, the words that follow
/// the options and that the program reads itself; it may be empty. `host` must outlive the parser.
[[nodiscard]] std::unique_ptr<CLI::App> makeParser(const std::string& program, const std::string& summary,
                                                   const std::string& synopsis, HostOptions& host);

/// Adds an option with one string as its value, which must not be empty. The help shows `type` for it.
CLI::Option& addText(CLI::App& parser, const std::string& name, std::string& text, const std::string& type,
                     const std::string& description);

/// Reads `arguments` into what the parser's options are bound to.
/// Returns why the program ends here, or none when it goes on.
[[nodiscard]] std::optional<CommandLineEnd> parse(CLI::App& parser, std::vector<std::string> arguments);

/// The complaint about options, which points to the help of the command that was named.
[[nodiscard]] CommandLineEnd complain(const CLI::App& parser, const std::string& fault);

/// How many of `arguments` are options of the parser and their values: those before the first word that does
/// not begin with "--". For a program whose other arguments may look like options, or are secrets that the
/// parser must not copy.
[[nodiscard]] std::size_t countLeadingOptions(const CLI::App& parser, std::span<char* const> arguments);

} // namespace platform
