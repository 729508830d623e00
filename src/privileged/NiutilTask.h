#pragma once

#include "directory/ni_report.h"
#include "platform/security/Authorization.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Posted by the shared NiutilTask, with itself as the object, when the user has granted the administrator
/// right.
inline const std::string NiutilAuthenticatedNotification = "NiutilAuthenticatedNotification";
/// Posted in the same way when the authorization has been given up.
inline const std::string NiutilDeauthenticatedNotification = "NiutilDeauthenticatedNotification";

/// Holds the administrator's rights. Every change to the directory, to protected files and to running servers
/// is a tool run by this object. Reading needs no rights. Main thread only; every operation blocks until its
/// runs have ended.
///
/// An operation that changes something first makes sure that the right is held, asking the user if necessary,
/// and does nothing (returning false) when it is refused. A run fails when its tool could not be started or
/// wrote anything to its standard output. A failed run beeps and is logged. Operations that return a boolean
/// stop at the first failed run; the others go on.
class NiutilTask {
  public:
    /// The current host's instance, made on first use.
    [[nodiscard]] static NiutilTask& sharedInstance();

    NiutilTask() = default;
    ~NiutilTask();
    NiutilTask(const NiutilTask&) = delete;
    NiutilTask& operator=(const NiutilTask&) = delete;

    /// True when the right is available now without asking the user. Makes the session if there is none.
    [[nodiscard]] bool isAuthenticated();
    /// Makes sure that the right is held, asking the user if necessary. Returns whether it is held.
    bool authenticate();
    /// Gives up the session and its rights and posts the notification. Does nothing without a session.
    void deauthenticate();

    /// The lines of a report (see directory/ni_report.h), never null. There are none when the directory
    /// cannot be read.
    using Report = std::shared_ptr<const std::vector<std::string>>;

    // Reports with one line per record. Each shows the directory as it is now. The properties are:
    /// name, directory_path, afp_shared, afp_name, afp_use_parent_privs, afp_use_parent_owner.
    [[nodiscard]] Report currentShares();
    /// name, uid, sharedDir, realname, gid.
    [[nodiscard]] Report currentUsers();
    /// gid, name, users.
    [[nodiscard]] Report currentGroups();

    /// While one of these exists, the lines of a report are kept, and read again only if the directory has
    /// changed: for work that asks for the same report more than once. The task must outlive it.
    class ReportsKept {
      public:
        explicit ReportsKept(NiutilTask& task) : task_(task) { ++task_.keepers_; }

        ~ReportsKept();
        ReportsKept(const ReportsKept&) = delete;
        ReportsKept& operator=(const ReportsKept&) = delete;

      private:
        NiutilTask& task_;
    };

    // Share records.
    bool createShare(const std::string& shareName, const std::string& directoryPath, std::int32_t sharingAFS,
                     std::int32_t inheritPerms, std::int32_t inheritOwner);
    void deleteShare(const std::string& shareName);
    void deleteAllShares();
    bool cp(const std::string& source, const std::string& to);
    void changePermissions(const std::string& directory, const std::string& owner, const std::string& group,
                           std::int32_t permissions);

    // Accounts.
    bool createUser(const std::string& shortName, const std::string& fullName, const std::string& uid,
                    const std::string& gid, bool publicShared, bool update);
    bool createGroup(const std::string& groupName, const std::string& gid, bool update);
    void deleteUser(const std::string& shortName);
    void deleteGroup(const std::string& groupName);
    bool addUser(const std::string& shortName, const std::string& toGroup);
    bool removeUser(const std::string& shortName, const std::string& fromGroup);
    void changeUserShare(const std::string& shortName, bool enable);
    void runPasswd(const std::string& shortName, const std::string& passwd);

    /// Makes a run that the caller has put together, with the usual checks. Returns false when it failed.
    bool carryOut(const std::string& tool, std::span<const std::string> arguments);

    /// Runs a tool whose output is its result, and returns that output; none when the right was refused or
    /// the run failed.
    [[nodiscard]] std::optional<std::string> outputOf(const std::string& tool,
                                                      std::span<const std::string> arguments);

    // Servers: these send signal 1 to each process of AppleFileServer or smbd.
    void restartAFS();
    void restartSMB();

  private:
    struct RunResult {
        OSStatus status = 0;
        std::optional<std::string> output; ///< none when it is not UTF-8
    };

    /// Asks the user for the right and posts the notification when it is granted. The session must exist.
    bool fetchPassword();
    /// Requests the administrator right with these flags. Returns whether it is granted.
    [[nodiscard]] bool copyRights(AuthorizationFlags flags);
    /// Runs the tool and reads its standard output to the end. `secretArgument` is the index of an argument
    /// that must not be shown.
    [[nodiscard]] RunResult runTool(const std::string& tool, std::span<const std::string> arguments,
                                    std::optional<std::size_t> secretArgument = std::nullopt);

    // One run with its checks. `message` is the log message for unexpected output, whose "%@" stands for the
    // output.
    /// Returns false at the first check that fails; the caller then stops.
    [[nodiscard]] bool runOrStop(const std::string& tool, std::span<const std::string> arguments,
                                 std::string_view message);
    /// Makes both checks, so that a run may log twice; the caller goes on.
    void runAndLog(const std::string& tool, std::span<const std::string> arguments, std::string_view message,
                   std::optional<std::size_t> secretArgument = std::nullopt);

    /// A property to be written, with the log message for unexpected output.
    struct Property {
        std::string name;
        std::string value;
        std::string_view message;
    };

    /// Makes the account's record, unless this is an update, then writes the properties in order; an empty
    /// value is written as a property without values. Returns false at the first failed run.
    [[nodiscard]] bool writeAccount(const std::string& path, bool update,
                                    std::span<const Property> properties);
    /// Sends signal 1 to every process that the listing command prints.
    void hangUp(const std::string& listingCommand);

    Report report(const std::string& path, std::span<const std::string> properties, KeptReport& kept);

    AuthorizationRef authorizationRef = nullptr;
    int keepers_ = 0; ///< how many ReportsKept exist
    KeptReport shares_;
    KeptReport users_;
    KeptReport groups_;
};
