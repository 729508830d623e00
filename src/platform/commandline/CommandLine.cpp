#include "platform/commandline/CommandLine.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace platform {

namespace {

/// In the help, names the words that follow the options, and shows only the value's type for an option.
class Formatter : public CLI::Formatter {
  public:
    explicit Formatter(std::string synopsis) : synopsis_(std::move(synopsis)) { column_width(20); }

    [[nodiscard]] std::string make_usage(const CLI::App* app, std::string name) const override {
        std::string usage = CLI::Formatter::make_usage(app, std::move(name));
        if (app->get_parent() == nullptr && !synopsis_.empty()) {
            usage.insert(usage.find_last_not_of('\n') + 1, " " + synopsis_);
        }
        return usage;
    }

    [[nodiscard]] std::string make_option_opts(const CLI::Option* option) const override {
        const std::string type = option->get_type_name();
        return type.empty() ? "" : " " + type;
    }

  private:
    std::string synopsis_;
};

/// Returns the command that was named, the parser itself without one.
const CLI::App& namedCommand(const CLI::App& parser) {
    const CLI::App* named = &parser;
    while (!named->get_subcommands().empty()) {
        named = named->get_subcommands().front();
    }
    return *named;
}

std::string faultOf(const CLI::App& parser, const CLI::ParseError& error) {
    const bool lacksCommand =
        namedCommand(parser).get_require_subcommand_min() > 0 && !parser.remaining(true).empty();
    return lacksCommand ? "there is no such command: " + parser.remaining(true).front() : error.what();
}

} // namespace

int CommandLineEnd::print() const {
    if (status != 0) {
        std::fprintf(stderr, "%s: %s\n", program.c_str(), text.c_str());
        return status;
    }
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        std::fprintf(stderr, "%s: standard output cannot be written\n", program_invocation_short_name);
        return 1;
    }
    return status;
}

std::span<char*> argumentsOf(int argc, char** argv) {
    const std::span all(argv, static_cast<std::size_t>(argc));
    return all.subspan(all.empty() ? 0 : 1);
}

std::unique_ptr<CLI::App> makeParser(const std::string& program, const std::string& summary,
                                     const std::string& synopsis, HostOptions& host) {
    auto parser = std::make_unique<CLI::App>(summary, program);
    parser->option_defaults()->disable_flag_override();
    parser->formatter(std::make_shared<Formatter>(synopsis));
    parser->set_help_flag("--help", "Print this help");
    parser->set_version_flag("--version", program + " (Brindle) " BRINDLE_VERSION, "Print the version");
    addText(*parser, "--root", host.root, "DIR",
            "Work on the embedded root in DIR ($BRINDLE_ROOT, else ~/.local/share/brindle)");
    parser->add_flag("--system", host.system, "Work on this computer itself");
    return parser;
}

CLI::Option& addText(CLI::App& parser, const std::string& name, std::string& text, const std::string& type,
                     const std::string& description) {
    const CLI::Validator notEmpty(
        [](const std::string& value) { return value.empty() ? "a value is missing" : ""; }, "");
    return *parser.add_option(name, text, description)->type_name(type)->check(notEmpty);
}

std::optional<CommandLineEnd> parse(CLI::App& parser, std::vector<std::string> arguments) {
    for (const std::string& argument : arguments) {
        // The parser would take the next argument as the value.
        if (argument.starts_with("--") && argument.find('=') == argument.size() - 1) {
            return complain(parser, argument.substr(0, argument.size() - 1) + ": a value is missing");
        }
    }
    std::ranges::reverse(arguments); // the parser takes them from the end
    try {
        parser.parse(std::move(arguments));
        return std::nullopt;
    } catch (const CLI::CallForHelp&) {
        return CommandLineEnd{0, parser.help(), {}};
    } catch (const CLI::CallForVersion& version) {
        return CommandLineEnd{0, version.what() + std::string("\n"), {}};
    } catch (const CLI::ParseError& error) {
        return complain(parser, faultOf(parser, error));
    }
}

CommandLineEnd complain(const CLI::App& parser, const std::string& fault) {
    std::string command;
    for (const CLI::App* app = &namedCommand(parser); app != &parser; app = app->get_parent()) {
        command.insert(0, " " + app->get_name());
    }
    const std::string& name = parser.get_name();
    return {CommandLineEnd::wrongOptions, fault + "; see " + name + command + " --help", name};
}

std::size_t countLeadingOptions(const CLI::App& parser, std::span<char* const> arguments) {
    std::size_t count = 0;
    while (count < arguments.size() && std::string_view(arguments[count]).starts_with("--")) {
        const CLI::Option* option = parser.get_option_no_throw(arguments[count]);
        count += option != nullptr && option->get_items_expected_max() > 0 ? 2 : 1;
    }
    return std::min(count, arguments.size());
}

} // namespace platform
