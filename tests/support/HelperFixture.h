#pragma once

#include "platform/host/EmbeddedRoot.h"
#include "support/TestHost.h"
#include "tools/Helper.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

inline const std::string helperProgram = std::string(BRINDLE_PROGRAMS) + "/brindle-helper";

inline struct stat statusOf(const fs::path& path) {
    struct stat status {};

    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status;
}

inline unsigned modeOf(const fs::path& path) {
    return statusOf(path).st_mode & 07777U;
}

class HelperTest : public testing::Test {
  protected:
    HelperTest() { EXPECT_EQ(root_.makeIfMissing().text(), ""); }

    std::string run(const std::string& tool, const std::vector<std::string>& arguments) const {
        const tools::HelperResult result = tools::runHelperTool(place_, {tool, arguments});
        const std::string text = result.output + result.errors;
        EXPECT_EQ(result.status, text.empty() ? 0 : 1);
        EXPECT_EQ(std::ranges::count(text, '\n'), text.empty() ? 0 : 1) << "one line: " << text;
        return text;
    }

    fs::path folder(const std::string& name) const {
        fs::create_directories(test_.root() / name);
        return test_.root() / name;
    }

    /// With its own strings it gets its own resources folder, which another account can read wherever the
    /// checkout is.
    TestHost test_{TestHost::Options{.strings = {{"OK", "OK"}}}};
    platform::EmbeddedRoot root_{(test_.root() / "computer").string()};
    tools::HelperPlace place_{root_.folder(), ::getuid()};
    fs::path target_ = root_.map("/etc/smb.conf");
    std::string source_ = (test_.root() / "new.conf").string();
};
