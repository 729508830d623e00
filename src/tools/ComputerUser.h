#pragma once

#include "tools/ComputerAccount.h"

namespace tools {

/// A user of this computer.
class ComputerUser : public ComputerAccount {
  public:
    ComputerUser(ComputerDirectory& directory, const DirectoryChange& change);

  private:
    [[nodiscard]] std::optional<unsigned> number() const override;

    [[nodiscard]] const char* numberProperty() const override { return "uid"; }

    [[nodiscard]] std::optional<std::vector<std::string>>
    programThatMakes(platform::Store::Record collected) override;
    [[nodiscard]] platform::Status writeLine() override;
    [[nodiscard]] std::vector<std::string> programThatRenames(const std::string& newName) const override;
    [[nodiscard]] std::vector<std::string> programThatRenumbers(unsigned newNumber) const override;
    [[nodiscard]] std::vector<std::string> programThatDeletes() const override;

    [[nodiscard]] platform::Status modify(const char* option, const std::string& value) const;
    [[nodiscard]] platform::Status lockPassword() const;

    const platform::UserLine* line_; ///< null if the user has not been made yet
};

/// The password field of the user's line in /etc/shadow, which may be a hash; empty when it cannot be read.
[[nodiscard]] std::string passwordHashOf(const std::string& user);

} // namespace tools
