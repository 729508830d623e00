#include "platform/samba/SambaUser.h"

#include "platform/posix/Secret.h"

#include <array>
#include <string_view>

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
    user.isDisabled = fields[Flags].find('D') != std::string_view::npos;
    // Where there is no hash there are X's, or the words NO PASSWORD.
    user.hasPassword = fields[Hash].find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
    return user;
}

} // namespace

std::vector<std::string> sambaUserWords(const std::string& user) {
    return {"-L", "-w", "--user=" + user};
}

Result<std::optional<SambaUser>> sambaUserOf(FinishedProcess& run) {
    std::optional<SambaUser> user;
    std::string_view rest = run.output;
    while (!user && !rest.empty()) {
        const auto end = rest.find('\n');
        user = userOfLine(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    const auto says = [&run](std::string_view text) { return run.output.find(text) != std::string::npos; };
    // Nobody is found in a database that cannot be opened either.
    const bool isUnknown = says("Username not found") && !says("ailed to open");
    const std::string complaint = user ? std::string() : lastLineOf(run.output);
    wipe(run.output);
    if (!user && !isUnknown) {
        return Status::failure("cannot read the password database", "", complaint);
    }
    return user;
}

} // namespace platform
