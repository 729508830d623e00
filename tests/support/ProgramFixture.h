#pragma once

#include "support/AppFixture.h"
#include "support/Subprocess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

/// The program on a new root, started as people start it.
class Program : public testing::Test {
  protected:
    [[nodiscard]] std::vector<std::string> environment() const {
        return {"HOME=" + test_.home().string(), "XDG_CONFIG_HOME=", "LC_ALL=C",
                "BRINDLE_ROOT=" + (test_.root() / "computer").string()};
    }

    [[nodiscard]] Finished run(std::vector<std::string> arguments, const std::string& input = {}) const {
        arguments.insert(arguments.begin(), BRINDLE_PROGRAMS "/brindle");
        return runProgram(arguments, input, environment());
    }

    [[nodiscard]] std::string script(const std::string& commands) const {
        const Finished finished = run({"--script", "-"}, commands);
        EXPECT_EQ(finished.errors, "");
        EXPECT_EQ(finished.status, 0);
        return finished.output;
    }

    [[nodiscard]] bool isLaunchCounted() const {
        return std::filesystem::exists(test_.home() / ".config/brindle/defaults.plist");
    }

    TestHost test_;
};
