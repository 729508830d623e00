#include "platform/samba/UserShares.h"

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Process.h"
#include "platform/samba/InstalledSamba.h"

#include <cerrno>
#include <chrono>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/fsuid.h>
#include <sys/stat.h>

namespace platform {

namespace {

constexpr const char* cannotOffer = "cannot offer the Public folder of";
constexpr const char* cannotTakeAway = "cannot take away the Public folder of";
constexpr const char* folderName = "Public";
/// Everybody may read. Given as a SID, because only a running server knows the name.
constexpr const char* everyone = "S-1-1-0:R";
constexpr mode_t folderMode = 0755;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr auto limit = std::chrono::seconds(20);

Result<FinishedProcess> runSamba(std::vector<std::string> words) {
    return runProcess({std::move(words), ErrorOutput::WithOutput, systemEnvironment()}, {}, limit);
}

/// Whether guests may use user shares at all.
bool allowsGuests() {
    const std::string testparm = sambaCommand("testparm");
    if (testparm.empty()) {
        return false;
    }
    const auto said = runProcess({{testparm, "-s", "--parameter-name=usershare allow guests"},
                                  ErrorOutput::Discarded,
                                  systemEnvironment()},
                                 {}, limit);
    return said.isOk() && said->output.starts_with("Yes");
}

/// Opens the account's home folder. Fails when it is a link, not a folder, or belongs to somebody else.
Result<FileDescriptor> openHome(const PublicFolderOwner& owner) {
    FileDescriptor home(::open(owner.home.c_str(), folderFlags));

    struct stat status {};

    if (!home.isOpen() || ::fstat(home.get(), &status) != 0) {
        return Status::ofErrno(cannotOffer, owner.name, errno);
    }
    if (status.st_uid != owner.uid) {
        return Status::failure(cannotOffer, owner.name, owner.home + " is not the user's own folder");
    }
    return home;
}

/// Makes the folder with the owner's identity, so that it belongs to that user from the start. With a chown
/// afterwards, somebody could put something else in its place first. Returns 0 or errno.
int makeAs(const PublicFolderOwner& owner, int home) {
    const mode_t mask = ::umask(S_IWGRP | S_IWOTH);
    const int group = ::setfsgid(owner.gid);
    const int user = ::setfsuid(owner.uid);
    const int error = ::mkdirat(home, folderName, folderMode) == 0 ? 0 : errno;
    ::setfsuid(static_cast<uid_t>(user));
    ::setfsgid(static_cast<gid_t>(group));
    ::umask(mask);
    return error;
}

/// Makes HOME/Public, readable by everybody, unless it exists. Fails when it is not a folder of the user's
/// own.
Status makeFolder(const PublicFolderOwner& owner) {
    const auto home = openHome(owner);
    if (!home.isOk()) {
        return home.status();
    }
    if (const int error = makeAs(owner, home->get()); error != 0 && error != EEXIST) {
        return Status::ofErrno(cannotOffer, owner.name, error);
    }
    const FileDescriptor folder(::openat(home->get(), folderName, folderFlags));

    struct stat status {};

    if (!folder.isOpen() || ::fstat(folder.get(), &status) != 0) {
        return Status::failure(cannotOffer, owner.name, owner.home + "/Public is not a folder; move it away");
    }
    if (status.st_uid != owner.uid) {
        return Status::failure(cannotOffer, owner.name, owner.home + "/Public is not the user's own folder");
    }
    return {};
}

Status complaint(const char* what, const std::string& name, const Result<FinishedProcess>& run) {
    return Status::failure(what, name,
                           run.isOk() ? "net: " + lastLineOf(run->output) : std::string(run.status().why()));
}

} // namespace

std::string publicShareName(const std::string& user) {
    return user + "'s Public";
}

const char* whyNoPublicFolder(const PublicFolderOwner& owner, uid_t lowest, uid_t highest) {
    if (owner.uid < lowest || owner.uid > highest) {
        return "%@ is an account of the system";
    }

    struct stat status {}; // lstat works even for a folder that may not be opened

    const bool isOwn =
        ::lstat(owner.home.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == owner.uid;
    return isOwn ? nullptr : "%@ has no home folder of its own";
}

Status offerPublicFolder(const PublicFolderOwner& owner) {
    const std::string net = sambaCommand("net");
    if (net.empty()) {
        return Status::failure(cannotOffer, owner.name,
                               "net is not installed; install the package samba-common-bin");
    }
    if (Status status = makeFolder(owner); !status.isOk()) {
        return status;
    }
    const auto run =
        runSamba({net, "usershare", "add", publicShareName(owner.name), owner.home + "/" + folderName, "",
                  everyone, allowsGuests() ? "guest_ok=y" : "guest_ok=n"});
    return run.isOk() && run->status == 0 ? Status() : complaint(cannotOffer, owner.name, run);
}

Status takePublicFolderAway(const std::string& name) {
    const std::string net = sambaCommand("net");
    if (net.empty()) {
        return {}; // then nothing is offered either
    }
    const auto run = runSamba({net, "usershare", "delete", publicShareName(name)});
    const auto says = [&](std::string_view text) { return run->output.find(text) != std::string::npos; };
    // When Samba does not allow user shares, there is none.
    const bool isGone =
        run.isOk() && (run->status == 0 || says("No such file") || says("usershares are currently disabled"));
    return isGone ? Status() : complaint(cannotTakeAway, name, run);
}

} // namespace platform
