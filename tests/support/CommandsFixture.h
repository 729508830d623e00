#pragma once

#include "support/Subprocess.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using nlohmann::json;

inline std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

class Commands : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(folder());
        fs::permissions(folder(), fs::perms(0755));
    }

    [[nodiscard]] fs::path folder() const { return test_.root() / "Documents"; }

    Finished command(const std::string& line, const std::string& input = {}) const {
        std::vector<std::string> words = wordsOf(line);
        words.insert(words.begin(),
                     {BRINDLE_PROGRAMS "/brindle", "--root", (test_.root() / "computer").string()});
        return runProgram(words, input, {"HOME=" + test_.home().string(), "LC_ALL=" + locale});
    }

    /// Returns the command's JSON output; expects `status` as its exit status.
    json answer(const std::string& line, int status = 0, const std::string& input = {}) const {
        const Finished finished = command(line + " --json", input);
        EXPECT_EQ(finished.status, status) << line << '\n' << finished.output << finished.errors;
        EXPECT_EQ(finished.errors, "");
        return json::parse(finished.output, nullptr, false);
    }

    /// Returns the output of a script.
    std::string runScript(const std::string& script) const {
        return runProgram({BRINDLE_PROGRAMS "/brindle", "--root", (test_.root() / "computer").string(),
                           "--script", "-"},
                          script, {"HOME=" + test_.home().string(), "LC_ALL=C"})
            .output;
    }

    std::string locale = "C";
    TestHost test_;
};
