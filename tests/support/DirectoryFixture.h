#pragma once

#include "platform/netinfo/Store.h"
#include "support/TestHost.h"
#include "tools/DirectoryTools.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// A host with a directory that only has the records that always exist.
class DirectoryFixture : public testing::Test {
  protected:
    void SetUp() override {
        platform::Store store(host.storeFile(), platform::Store::Opening::Create);
        store.addStandingRecords();
        EXPECT_TRUE(store.commit().isOk());
    }

    /// Runs `nicl . WORDS...` and returns its output.
    std::string nicl(std::vector<std::string> words) {
        words.insert(words.begin(), ".");
        const tools::ToolResult result = tools::runNicl(host.storeFile().string(), words);
        EXPECT_EQ(result.status == 0, result.output.empty()) << result.output;
        return result.output;
    }

    /// Returns the record as niutil prints it.
    static std::string record(const std::string& path) {
        return tools::runNiutil(std::vector<std::string>{"-read", ".", path}).output;
    }

    TestHost host;
};
