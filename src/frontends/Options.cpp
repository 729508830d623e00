#include "frontends/Options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <vector>

namespace frontend {

namespace {

struct OptionKind {
    std::string_view name;
    bool takesValue;
};

constexpr std::array kinds = {
    OptionKind{"--root", true},  OptionKind{"--system", false},  OptionKind{"--script", true},
    OptionKind{"--print", true}, OptionKind{"--snapshot", true}, OptionKind{"--serve", false},
    OptionKind{"--port", true},  OptionKind{"--help", false},    OptionKind{"--version", false},
};

/// Takes the options apart, one by one.
class OptionReader {
  public:
    explicit OptionReader(std::span<const std::string> arguments) : arguments_(arguments) {}

    Options read() {
        while (next_ < arguments_.size()) {
            readOption(arguments_[next_++]);
        }
        checkTogether();
        return options_;
    }

  private:
    void readOption(const std::string& argument) {
        const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
        const std::string name = argument.substr(0, equals);
        const auto kind = std::find_if(kinds.begin(), kinds.end(),
                                       [&](const OptionKind& each) { return each.name == name; });
        if (kind == kinds.end()) {
            throw OptionsError(argument.starts_with('-') ? "unknown option " + name
                                                         : "\"" + argument + "\" is not an option");
        }
        if (std::find(given_.begin(), given_.end(), name) != given_.end()) {
            throw OptionsError(name + " is given twice");
        }
        given_.push_back(name);
        if (kind->takesValue) {
            take(name, value(name, argument, equals));
        } else if (equals != std::string::npos) {
            throw OptionsError(name + " takes no value");
        } else {
            take(name, "");
        }
    }

    std::string value(const std::string& name, const std::string& argument, std::size_t equals) {
        std::string text;
        if (equals != std::string::npos) {
            text = argument.substr(equals + 1);
        } else if (next_ < arguments_.size()) {
            text = arguments_[next_++];
        }
        if (text.empty()) {
            throw OptionsError(name + " needs a value after it");
        }
        return text;
    }

    void take(const std::string& name, const std::string& value) {
        if (name == "--root") {
            options_.root = value;
        } else if (name == "--system") {
            options_.system = true;
        } else if (name == "--script") {
            setMode(Mode::Script, name);
            options_.script = value;
        } else if (name == "--snapshot") {
            setMode(Mode::Snapshot, name);
            options_.snapshotFolder = value;
        } else if (name == "--print") {
            setMode(Mode::Print, name);
            options_.table = table(value);
        } else if (name == "--serve") {
            options_.serve = true;
        } else if (name == "--port") {
            options_.port = port(value);
        } else {
            setMode(name == "--help" ? Mode::Help : Mode::Version, name);
        }
    }

    void setMode(Mode mode, const std::string& name) {
        if (!modeName_.empty()) {
            throw OptionsError(modeName_ + " and " + name + " cannot be done in one run");
        }
        options_.mode = mode;
        modeName_ = name;
    }

    static PrintedTable table(const std::string& value) {
        if (value == "shares") {
            return PrintedTable::Shares;
        }
        if (value == "users") {
            return PrintedTable::Users;
        }
        if (value == "groups") {
            return PrintedTable::Groups;
        }
        throw OptionsError("--print takes shares, users or groups, not \"" + value + "\"");
    }

    static int port(const std::string& value) {
        int number = 0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
        if (error != std::errc() || end != value.data() + value.size() || number < 1 || number > 65535) {
            throw OptionsError("--port takes a number from 1 to 65535, not \"" + value + "\"");
        }
        return number;
    }

    void checkTogether() const {
        if (options_.system && !options_.root.empty()) {
            throw OptionsError("--root and --system contradict each other");
        }
        if (options_.port && !options_.serve) {
            throw OptionsError("--port is the port of --serve, which is missing");
        }
        if (options_.serve && options_.system) {
            throw OptionsError("--serve is for an embedded root: --system has a server of its own");
        }
        if (options_.serve && options_.mode != Mode::Window && options_.mode != Mode::Script) {
            throw OptionsError("--serve lasts as long as the window or a script: it cannot go with " +
                               modeName_);
        }
    }

    std::span<const std::string> arguments_;
    std::size_t next_ = 0;
    std::vector<std::string> given_;
    std::string modeName_; ///< the option that picked the mode
    Options options_;
};

} // namespace

Options parseOptions(std::span<const std::string> arguments) {
    return OptionReader(arguments).read();
}

std::string usage() {
    return R"(usage: brindle [--root DIR] [--serve [--port N]] [--script FILE]
       brindle --system [--script FILE]
       brindle [--root DIR | --system] --print shares|users|groups
       brindle [--root DIR | --system] --snapshot DIR
       brindle --help | --version

Administers the file sharing of one computer. Without --script, --print or --snapshot it opens its window.

  --root DIR        work on the folder DIR instead of this computer; it is made and filled from this computer's
                    accounts when it is not there (BRINDLE_ROOT does the same; ~/.local/share/brindle otherwise)
  --system          work on this computer itself (not built yet)
  --script FILE     carry out the commands in FILE without a window; - is standard input
  --print TABLE     print the shares, users or groups and end
  --snapshot DIR    write a picture of every page of the window into DIR and end
  --serve           start a file server of the root's own on this computer for as long as Brindle runs
  --port N          its port (4455)
)";
}

} // namespace frontend
