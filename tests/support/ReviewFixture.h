#pragma once

#include "frontends/script/ControlState.h"
#include "platform/host/DirectoryAccounts.h"
#include "platform/posix/InputOutput.h"
#include "review/Reviewer.h"
#include "support/AppFixture.h"
#include "tools/HelperFolders.h"

#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>

/// The application with a reviewer. Runs change this test's directory, files and folders as they would change
/// a root's.
class ReviewFixture : public AppFixture {
  protected:
    explicit ReviewFixture(const TestHost::Options& options = {}) : AppFixture(options) {
        host.onRun = [this](const RecordedRun& run) { return carryOutAll(run); };
        host.onListing = [](const std::string&) { return std::optional<std::string>("310\n"); };
    }

    TestHost::RunAnswer carryOutAll(const RecordedRun& run) {
        const tools::DirectoryPlace place(host.storeFile().string());
        const auto said = [](const platform::Status& status) {
            return TestHost::RunAnswer{status.text(), 0};
        };
        if (run.tool == "/usr/sbin/chown") {
            return said(tools::changeOwner(run.arguments.at(0), run.arguments.at(1),
                                           platform::DirectoryAccounts(place.storeFile),
                                           tools::FolderHost::Embedded));
        }
        return run.tool == "/bin/chmod" ? said(tools::changeMode(run.arguments.at(0), run.arguments.at(1),
                                                                 tools::FolderHost::Embedded))
                                        : carryOut(run);
    }

    /// Loads and launches, with the reviewer.
    void begin() {
        start();
        reviewer.emplace(*interface);
        reviewer->setServesPerson(true);
    }

    void TearDown() override { reviewer.reset(); }

    void writeConf(const std::string& text) { host.write("etc/smb.conf", text); }

    void writeAFP(const std::string& entries) {
        host.write("Library/Preferences/com.apple.AppleFileServer.plist",
                   "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
                       "</dict></plist>\n");
    }

    /// Makes a folder in this test's root and returns its path.
    std::string folder(const std::string& name, mode_t mode = 0755) {
        const std::string path = (host.root() / name).string();
        std::filesystem::create_directories(path);
        EXPECT_EQ(::chmod(path.c_str(), mode), 0);
        return path;
    }

    /// Returns every file and folder of the root by its path, with owner, mode and bytes.
    std::map<std::string, std::string> everything() const {
        std::map<std::string, std::string> all;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(host.root())) {
            struct stat status {};

            EXPECT_EQ(::lstat(entry.path().c_str(), &status), 0);
            std::string text = std::to_string(status.st_uid) + ":" + std::to_string(status.st_gid) + " " +
                               std::to_string(status.st_mode);
            if (entry.is_regular_file()) {
                text += "\n" + platform::readWholeFile(entry.path().string()).valueOr("unreadable");
            }
            all.emplace(entry.path().string(), text);
        }
        return all;
    }

    /// Returns the state of every control with a name.
    std::string controls() const { return controlsBelow(interface->root()); }

    static std::string controlsBelow(const platform::InterfaceNode& node) {
        std::string text;
        if (node.element && !node.element->name().empty()) {
            text += frontend::describeState(node) + "\n";
        }
        for (const auto& child : node.children) {
            text += controlsBelow(*child);
        }
        return text;
    }

    // What a user does.
    void choose(const std::string& menu, const std::string& title) {
        auto& popUp = control<NSPopUpButton>(menu);
        popUp.performSelect(popUp.indexOfItemWithTitle(title));
    }

    void choose(const std::string& menu, int index) { control<NSPopUpButton>(menu).performSelect(index); }

    void click(const std::string& box) { control<NSButton>(box).performClick(); }

    /// Returns the codes of the warnings of a plan to send the operation, each once, separated by blanks.
    std::string warningsOf(const std::string& operation) {
        std::string codes;
        for (const review::Remark& warning : reviewer->planSend(operation).warnings) {
            const std::string code(warning.code);
            if ((" " + codes + " ").find(" " + code + " ") == std::string::npos) {
                codes += (codes.empty() ? "" : " ") + code;
            }
        }
        return codes;
    }

    /// Returns the first warning with that code; empty when the plan has none.
    std::string sentence(const std::string& operation, const std::string& code) {
        const review::Plan plan = reviewer->planSend(operation);
        for (const auto* remarks : {&plan.warnings, &plan.blocks}) {
            for (const review::Remark& remark : *remarks) {
                if (remark.code == code) {
                    return remark.sentence;
                }
            }
        }
        return {};
    }

    std::optional<review::Reviewer> reviewer;
};
