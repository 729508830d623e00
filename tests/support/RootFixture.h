#pragma once

#include "platform/host/EmbeddedRoot.h"
#include "platform/posix/Process.h"
#include "platform/samba/SambaAccounts.h"
#include "support/TestHost.h"
#include "tools/DirectoryTools.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// An embedded root that does not exist yet, and the tools that work on it.
class Root : public testing::Test {
  protected:
    std::string nicl(std::vector<std::string> words) const {
        words.insert(words.begin(), ".");
        return tools::runNicl(tools::DirectoryPlace::ofRoot(root.folder()), words).output;
    }

    [[nodiscard]] std::string dscl(const std::string& path, const std::string& password) const {
        return tools::runDscl(tools::DirectoryPlace::ofRoot(root.folder()),
                              std::vector<std::string>{".", "-passwd", path, password})
            .output;
    }

    /// Returns the users in the root's password database, one per line.
    [[nodiscard]] std::string passwordDatabase() const { return pdbedit({"-L"}); }

    [[nodiscard]] std::string pdbedit(const std::vector<std::string>& words) const {
        const platform::SambaAccounts accounts(root.sambaPaths());
        platform::Command command{{"/usr/bin/pdbedit", "-s", root.sambaPaths().folder + "/accounts.conf"},
                                  platform::ErrorOutput::WithOutput,
                                  accounts.environment()};
        command.words.insert(command.words.end(), words.begin(), words.end());
        return platform::runProcess(command)->output;
    }

    TestHost host;
    platform::EmbeddedRoot root{(host.root() / "new root").string()};
};
