#include "tools/UnfinishedChange.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/Secret.h"
#include "platform/posix/WholeFile.h"
#include "platform/posix/WholeNumber.h"

#include <array>
#include <cerrno>
#include <string_view>

#include <unistd.h>

namespace tools {

using platform::Result;
using platform::Status;

namespace {

constexpr std::string_view user = "user";
constexpr std::string_view group = "group";

/// Removes the first line from `text` and returns it; none when there is no whole line.
std::optional<std::string_view> nextLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    return line;
}

std::optional<UnfinishedChange> parse(std::string_view text) {
    std::array<std::string_view, 6> lines;
    for (std::string_view& line : lines) {
        const auto next = nextLine(text);
        if (!next) {
            return std::nullopt;
        }
        line = *next;
    }
    UnfinishedChange change;
    change.isUser = lines[0] == user;
    change.before.name = lines[1];
    change.after.name = lines[3];
    change.sambaAccount = lines[5];
    const auto before = platform::wholeNumber<unsigned>(lines[2]);
    const auto after = platform::wholeNumber<unsigned>(lines[4]);
    if (!before || !after) {
        return std::nullopt;
    }
    change.before.number = *before;
    change.after.number = *after;
    return change;
}

} // namespace

Status UnfinishedChange::write(const std::string& path) const {
    std::string text;
    text.reserve(256 + before.name.size() + after.name.size() + sambaAccount.size());
    text.append(isUser ? user : group).append("\n");
    for (const Account& account : {before, after}) {
        text.append(account.name).append("\n").append(std::to_string(account.number)).append("\n");
    }
    text.append(sambaAccount).append("\n");
    Status status = platform::writeWholeFile(path, text, {.mode = 0600});
    platform::wipe(text);
    return status;
}

Result<std::optional<UnfinishedChange>> UnfinishedChange::read(const std::string& path) {
    auto text = platform::readWholeFile(path);
    if (!text.isOk()) {
        return text.status().systemError() == ENOENT ? Result(std::optional<UnfinishedChange>())
                                                     : text.status();
    }
    auto change = parse(*text);
    platform::wipe(*text);
    if (!change) {
        return Status::failure("cannot finish the change in", path,
                               "the file is damaged; look at the account that it names, then delete it");
    }
    return Result(std::move(change));
}

Status UnfinishedChange::forget(const std::string& path) {
    return ::unlink(path.c_str()) == 0 || errno == ENOENT ? Status()
                                                          : Status::ofErrno("cannot take away", path, errno);
}

} // namespace tools
