#include "frontends/cli/PasswordSource.h"

#include "frontends/cli/CommandRun.h"
#include "frontends/cli/Terminal.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/Secret.h"
#include "platform/samba/SambaAccounts.h"

#include <unistd.h>

namespace frontend {

namespace {

std::string typedTwice(const std::string& user) {
    if (!isAtTerminal()) {
        CommandRun::fail(NSLocalizedString("a password is needed: use --password-stdin or --password-fd"),
                         CommandStatus::NeedsAnswer);
    }
    auto first = askSecret(stringWithFormat(NSLocalizedString("Password for %@"), user));
    auto second = first ? askSecret(NSLocalizedString("Once more")) : std::nullopt;
    const bool areRead = first && second;
    const bool agree = areRead && *first == *second;
    if (second) {
        platform::wipe(*second);
    }
    if (!agree && first) {
        platform::wipe(*first);
    }
    if (!agree) {
        CommandRun::fail(areRead ? NSLocalizedString("the passwords are not the same")
                                 : NSLocalizedString("the password cannot be read"));
    }
    return std::move(*first);
}

std::string firstLine(int descriptor) {
    auto line = firstLineOf(descriptor);
    if (!line) {
        CommandRun::fail(NSLocalizedString("the password cannot be read"));
    }
    return std::move(*line);
}

} // namespace

void PasswordSource::addTo(CLI::App& command) {
    CLI::Option* const input = command.add_flag("--password-stdin", isStandardInput,
                                                "The password is the first line of standard input");
    command.add_option("--password-fd", descriptor, "The password is the first line of this open descriptor")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber.description(""))
        ->excludes(input);
}

std::string PasswordSource::read(const std::string& user) const {
    std::string password = isGiven() ? firstLine(descriptor.value_or(STDIN_FILENO)) : typedTwice(user);
    const auto usable = password.empty()
                            ? platform::Status::failure("", "", "it is empty; choose another one")
                            : platform::SambaAccounts::checkPassword(password);
    if (!usable.isOk()) {
        platform::wipe(password);
        CommandRun::fail(stringWithFormat(NSLocalizedString("The password of \"%@\" cannot be used: %@."),
                                          user, NSLocalizedString(std::string(usable.why()))));
    }
    return password;
}

} // namespace frontend
