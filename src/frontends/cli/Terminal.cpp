#include "frontends/cli/Terminal.h"

#include "frontends/cli/Interruption.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <cerrno>
#include <iostream>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace frontend {

namespace {

constexpr std::size_t longestLine = 4096;

/// Switches off the terminal's echo for its lifetime.
class HiddenInput {
  public:
    HiddenInput() {
        if (::tcgetattr(STDIN_FILENO, &before_) == 0) {
            termios hidden = before_;
            hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            hidden.c_lflag |= ECHONL;
            isHidden_ = ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden) == 0;
        }
    }

    ~HiddenInput() {
        if (isHidden_) {
            ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
        }
    }

    HiddenInput(const HiddenInput&) = delete;
    HiddenInput& operator=(const HiddenInput&) = delete;

  private:
    termios before_{};
    bool isHidden_ = false;
};

/// Waits until there is something to read, or the input has ended. Returns false when the command is
/// interrupted.
bool waitForInput(int descriptor) {
    constexpr int lookAgain = 500; // milliseconds, for a signal that came just before the wait
    pollfd input{descriptor, POLLIN, 0};
    while (!Interruption::hasCome()) {
        const int ready = ::poll(&input, 1, lookAgain);
        if (ready > 0 || (ready < 0 && errno != EINTR)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool isAtTerminal() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

std::optional<std::string> firstLineOf(int descriptor) {
    std::string line;
    line.reserve(longestLine); // growing would leave copies of a secret in memory
    char character = '\0';
    while (line.size() < longestLine) {
        if (!waitForInput(descriptor)) {
            return std::nullopt;
        }
        const ssize_t count = ::read(descriptor, &character, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || (count == 0 && line.empty())) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        if (character == '\n') {
            if (line.ends_with('\r')) { // a file from Windows
                line.pop_back();
            }
            break;
        }
        line += character;
    }
    return line;
}

void tell(const std::string& text) {
    std::cerr << text << '\n';
}

bool askYesOrNo(const std::string& question) {
    const std::string choice = NSLocalizedString("[y/N]"); // the letter for yes comes first
    std::cerr << question << ' ' << choice << ' ' << std::flush;
    const auto answer = firstLineOf(STDIN_FILENO);
    return answer && (isEqualIgnoringCase(answer->substr(0, 1), "y") ||
                      isEqualIgnoringCase(answer->substr(0, 1), choice.substr(1, 1)));
}

std::optional<std::string> askSecret(const std::string& prompt) {
    std::cerr << prompt << ": " << std::flush;
    Interruption interruption;
    interruption.begin(); // until the terminal shows again what is typed
    const HiddenInput hidden;
    return firstLineOf(STDIN_FILENO);
}

} // namespace frontend
