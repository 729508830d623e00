#pragma once

#include "directory/DirectoryRules.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/Status.h"
#include "tools/ComputerDirectory.h"

#include <optional>
#include <string>
#include <vector>

namespace tools {

/// One change of an account of this computer. An account is made by several changes, first of the record and
/// then one for each property. They are collected in the store until everything is known that the computer's
/// own program needs to make the account. From then on, what the account's line holds is changed by those
/// programs, and the rest in the store.
class ComputerAccount {
  public:
    virtual ~ComputerAccount() = default;
    ComputerAccount(const ComputerAccount&) = delete;
    ComputerAccount& operator=(const ComputerAccount&) = delete;

    /// Carries the change out if the rules for accounts allow it. On failure nothing has changed.
    [[nodiscard]] platform::Status run();

  protected:
    /// `change` must pass checkDirectoryChange and be the change of an account. Both arguments must outlive
    /// this object.
    ComputerAccount(ComputerDirectory& directory, const DirectoryChange& change);

    // What differs between users and groups.

    /// The account's number; none when the computer has no such account.
    [[nodiscard]] virtual std::optional<unsigned> number() const = 0;
    [[nodiscard]] virtual const char* numberProperty() const = 0;
    /// The command that makes the account from what was collected; none as long as something is missing.
    [[nodiscard]] virtual std::optional<std::vector<std::string>>
    programThatMakes(platform::Store::Record collected) = 0;
    /// Writes a property of the account's line other than its name and number.
    [[nodiscard]] virtual platform::Status writeLine() = 0;
    [[nodiscard]] virtual std::vector<std::string> programThatRenames(const std::string& newName) const = 0;
    [[nodiscard]] virtual std::vector<std::string> programThatRenumbers(unsigned newNumber) const = 0;
    [[nodiscard]] virtual std::vector<std::string> programThatDeletes() const = 0;

    [[nodiscard]] ComputerDirectory& directory() const { return directory_; }

    [[nodiscard]] const DirectoryChange& change() const { return change_; }

    [[nodiscard]] const std::string& name() const { return path_.back(); }

    [[nodiscard]] bool isUser() const { return path_.front() == "users"; }

    /// Whether Brindle has made the account.
    [[nodiscard]] bool isOurs() const { return isOurs_; }

    [[nodiscard]] platform::Status refused(std::string why) const;
    /// Commits, then runs one of the computer's programs.
    [[nodiscard]] platform::Status runProgram(const std::vector<std::string>& words) const;
    [[nodiscard]] std::vector<std::string> collectedValues(platform::Store::Record record,
                                                           const char* property) const;
    /// The first of the collected values, or `other`.
    [[nodiscard]] std::string collectedValue(platform::Store::Record record, const char* property,
                                             const char* other) const;

  private:
    [[nodiscard]] platform::Status collect();
    [[nodiscard]] platform::Status begin(std::optional<platform::Store::Record> left);
    [[nodiscard]] platform::Status make(platform::Store::Record record,
                                        const std::optional<std::vector<std::string>>& valuesBefore,
                                        const std::vector<std::string>& program);
    [[nodiscard]] platform::Status changeAccount();
    [[nodiscard]] platform::Status rename();
    [[nodiscard]] platform::Status renumber();
    [[nodiscard]] platform::Status remove();
    /// Writes a property that the account's line cannot hold.
    [[nodiscard]] platform::Status writeBesideLine();
    [[nodiscard]] platform::Status writeStore();

    ComputerDirectory& directory_;
    const DirectoryChange& change_;
    RecordPath path_;
    bool isOurs_;
};

} // namespace tools
