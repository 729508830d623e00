#pragma once

#include "tools/ComputerAccount.h"

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

    const platform::UserLine* line_; ///< null: not made yet
};

/// The hash of the user's password, or what stands in its place; empty when it cannot be read.
[[nodiscard]] std::string passwordHashOf(const std::string& user);
