#pragma once

#include "tools/ComputerAccount.h"

namespace tools {

/// A group of this computer.
class ComputerGroup : public ComputerAccount {
  public:
    ComputerGroup(ComputerDirectory& directory, const DirectoryChange& change);

  private:
    [[nodiscard]] std::optional<unsigned> number() const override;

    [[nodiscard]] const char* numberProperty() const override { return "gid"; }

    [[nodiscard]] std::optional<std::vector<std::string>>
    programThatMakes(platform::Store::Record collected) override;
    [[nodiscard]] platform::Status writeLine() override;
    [[nodiscard]] std::vector<std::string> programThatRenames(const std::string& newName) const override;
    [[nodiscard]] std::vector<std::string> programThatRenumbers(unsigned newNumber) const override;
    [[nodiscard]] std::vector<std::string> programThatDeletes() const override;

    [[nodiscard]] platform::Status changeMembers() const;
    /// Runs gpasswd.
    [[nodiscard]] platform::Status edit(const std::vector<std::string>& options) const;

    const platform::GroupLine* line_; ///< null if the group has not been made yet
};

} // namespace tools
