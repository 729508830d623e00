#pragma once

#include <gtest/gtest.h>

#include <string>

/// Runs all tests of this program on a computer of their own (support/own-computer). If that is not allowed,
/// runs them here, where they are skipped. For main(); returns its exit status.
[[nodiscard]] int runTestsOnOwnComputer(int argc, char** argv);

/// A test that changes the computer on which it runs.
class OwnComputer : public testing::Test {
  protected:
    void SetUp() override;

    /// Returns the whole content of a file; empty when it cannot be read.
    [[nodiscard]] static std::string contents(const std::string& file);
};
