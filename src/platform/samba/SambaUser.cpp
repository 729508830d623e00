#include "platform/samba/SambaUser.h"

#include "platform/posix/Secret.h"

#include <array>
#include <string_view>
#include <utility>

namespace platform {

namespace {

/// The fields of a line of smbpasswd(5).
enum Field : std::size_t { Name, Number, LanManagerHash, Hash, Flags, LastChange, FieldCount };

std::optional<SambaUser> userOfLine(std::string_view line) {
    std::array<std::string_view, FieldCount> fields;
    for (std::size_t index = 0; index < FieldCount; ++index) {
        const auto colon = line.find(':');
        if (colon == std::string_view::npos) {
            return std::nullopt;
        }
        fields.at(index) = line.substr(0, colon);
        line.remove_prefix(colon + 1);
    }
    SambaUser user;
    user.name = fields[Name];
    user.isDisabled = fields[Flags].find('D') != std::string_view::npos;
    // Without a hash there are X's or the words NO PASSWORD.
    user.hasPassword = fields[Hash].find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
    return user;
}

std::vector<SambaUser> usersIn(std::string_view listing) {
    std::vector<SambaUser> users;
    while (!listing.empty()) {
        const auto end = listing.find('\n');
        if (auto user = userOfLine(listing.substr(0, end))) {
            users.push_back(std::move(*user));
        }
        listing.remove_prefix(end == std::string_view::npos ? listing.size() : end + 1);
    }
    return users;
}

Status unreadable(const std::string& complaint) {
    return Status::failure("cannot read the password database", "", complaint);
}

} // namespace

std::vector<std::string> allSambaUsersWords() {
    return {"-L", "-w"};
}

std::vector<std::string> sambaUserWords(const std::string& user) {
    return {"-L", "-w", "--user=" + user};
}

Result<std::optional<SambaUser>> sambaUserOf(FinishedProcess& run) {
    std::vector<SambaUser> users = usersIn(run.output);
    const auto says = [&run](std::string_view text) { return run.output.find(text) != std::string::npos; };
    // pdbedit says the same of a database that it could not open.
    const bool isUnknown = says("Username not found") && !says("ailed to open");
    const std::string complaint = users.empty() ? lastLineOf(run.output) : std::string();
    wipe(run.output);
    if (users.empty() && !isUnknown) {
        return unreadable(complaint);
    }
    return users.empty() ? std::nullopt : std::optional(std::move(users.front()));
}

Result<std::vector<SambaUser>> sambaUsersOf(FinishedProcess& run) {
    std::vector<SambaUser> users = usersIn(run.output);
    const std::string complaint = users.empty() ? lastLineOf(run.output) : std::string();
    wipe(run.output);
    if (run.status != 0) {
        return unreadable(complaint);
    }
    return users;
}

} // namespace platform
