#pragma once

#include "tools/ComputerAccount.h"

/// A group of this computer.
class ComputerGroup : public ComputerAccount {
  public:
    ComputerGroup(ComputerDirectory& directory, const DirectoryChange& change);

  private:
    [[nodiscard]] std::optional<unsigned> number() const override;

    [[nodiscard]] const char* numberProperty() const override { return "gid"; }

    [[nodiscard]] std::optional<std::string> otherInCase(const std::string& name) const override;
    [[nodiscard]] bool isTaken(const std::string& name) const override;
    [[nodiscard]] bool isPropertyOfLine(const std::string& property) const override;
    [[nodiscard]] platform::Status checkValues() const override;
    [[nodiscard]] platform::Status checkAccount() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    programThatMakes(platform::Store::Record collected) override;
    [[nodiscard]] platform::Status writeLine() override;
    [[nodiscard]] std::vector<std::string> programThatRenames(const std::string& newName) const override;
    [[nodiscard]] std::vector<std::string> programThatRenumbers(unsigned newNumber) const override;
    [[nodiscard]] std::vector<std::string> programThatDeletes() const override;

    [[nodiscard]] platform::Status addMembers() const;
    [[nodiscard]] platform::Status removeMembers() const;
    [[nodiscard]] platform::Status setMembers(const std::vector<std::string>& members) const;
    [[nodiscard]] bool isMember(const std::string& user) const;
    /// Whether the group is the user's own group, which makes a member without being listed.
    [[nodiscard]] bool isPrimaryGroupOf(const std::string& user) const;
    /// Runs gpasswd.
    [[nodiscard]] platform::Status edit(const std::vector<std::string>& options) const;

    const platform::GroupLine* line_; ///< null: not made yet
};

/// Why the group of administrators that the directory shows cannot be written.
[[nodiscard]] std::string whyAdministratorsStay(const ComputerDirectory& directory);
