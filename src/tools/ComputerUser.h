#pragma once

#include "tools/ComputerAccount.h"

/// A user of this computer.
class ComputerUser : public ComputerAccount {
  public:
    ComputerUser(ComputerDirectory& directory, const DirectoryChange& change);

  private:
    [[nodiscard]] std::optional<unsigned> number() const override;

    [[nodiscard]] const char* numberProperty() const override { return "uid"; }

    [[nodiscard]] std::optional<std::string> otherInCase(const std::string& name) const override;
    [[nodiscard]] bool isTaken(const std::string& name) const override;
    [[nodiscard]] bool isPropertyOfLine(const std::string& property) const override;
    [[nodiscard]] platform::Status checkValues() const override;
    [[nodiscard]] platform::Status checkAccount() const override;
    [[nodiscard]] platform::Status checkRemoval() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    programThatMakes(platform::Store::Record collected) override;
    [[nodiscard]] platform::Status writeLine() override;
    [[nodiscard]] std::vector<std::string> programThatRenames(const std::string& newName) const override;
    [[nodiscard]] std::vector<std::string> programThatRenumbers(unsigned newNumber) const override;
    [[nodiscard]] std::vector<std::string> programThatDeletes() const override;

    [[nodiscard]] platform::Status checkPrimaryGroup() const;
    [[nodiscard]] platform::Status modify(const char* option, const std::string& value) const;
    [[nodiscard]] platform::Status lockPassword() const;

    const platform::UserLine* line_; ///< null: not made yet
};

/// Fails, saying why, when `line` is an account that Brindle leaves as it is: the system's own, unless
/// Brindle `hasMade` it.
[[nodiscard]] platform::Status checkOrdinaryUser(const platform::UserLine& line, bool hasMade,
                                                 const platform::AccountLimits& limits);

/// The hash of the user's password, or what stands in its place; empty when it cannot be read.
[[nodiscard]] std::string passwordHashOf(const std::string& user);
