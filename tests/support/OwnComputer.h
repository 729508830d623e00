#pragma once

#include <gtest/gtest.h>

#include <string>

/// Runs all tests of this program on a computer of their own (support/own-computer), or, where that is not
/// allowed, here, to be skipped. For main(), and returns its exit status.
[[nodiscard]] int runTestsOnOwnComputer(int argc, char** argv);

/// A test that changes the computer that it runs on.
class OwnComputer : public testing::Test {
  protected:
    void SetUp() override;

    /// The whole of a file; empty when it cannot be read.
    [[nodiscard]] static std::string contents(const std::string& file);
};
