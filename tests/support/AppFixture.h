#pragma once

#include "app/BRController.h"
#include "platform/appkit/Interface.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/netinfo/Store.h"
#include "support/TestHost.h"
#include "tools/DirectoryTools.h"
#include "ui/AboutBox.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The application on the test's own host: the project's main window, a real directory that privileged runs
/// of nicl change, and runs of cp that change the mapped files. A test fills the directory, calls start() and
/// then uses the controls as a user does.
class AppFixture : public testing::Test {
  protected:
    explicit AppFixture(const TestHost::Options& options = {}) : host(options) {
        platform::Store store(host.storeFile().string(), platform::Store::Opening::Create);
        store.addRecord(platform::Store::root, "users");
        store.addRecord(platform::Store::root, "groups");
        store.addRecord(store.addRecord(platform::Store::root, "config"), "Brindle");
        EXPECT_TRUE(store.commit().isOk());
        host.onRun = [this](const RecordedRun& run) { return carryOut(run); };
    }

    /// Applies a privileged run to this test's directory and files. Runs that change accounts or the modes of
    /// folders do nothing.
    TestHost::RunAnswer carryOut(const RecordedRun& run) {
        if (run.tool == "/usr/bin/nicl") {
            return {tools::runNicl(tools::DirectoryPlace(host.storeFile().string()), run.arguments).output,
                    0};
        }
        if (run.tool == "/bin/cp") {
            std::filesystem::copy_file(run.arguments.at(0), host.host().paths().map(run.arguments.at(1)),
                                       std::filesystem::copy_options::overwrite_existing);
        }
        return {};
    }

    /// Changes the directory without a privileged run.
    void nicl(const std::vector<std::string>& operation) {
        std::vector<std::string> arguments = {"."};
        arguments.insert(arguments.end(), operation.begin(), operation.end());
        const tools::ToolResult result =
            tools::runNicl(tools::DirectoryPlace(host.storeFile().string()), arguments);
        ASSERT_EQ(result.output, "");
    }

    void addUser(const std::string& name, const std::string& uid, const std::string& gid = "20") {
        nicl({"-create", "/users/" + name});
        nicl({"-create", "/users/" + name, "uid", uid});
        nicl({"-create", "/users/" + name, "gid", gid});
    }

    void addGroup(const std::string& name, const std::string& gid,
                  const std::vector<std::string>& users = {}) {
        nicl({"-create", "/groups/" + name});
        nicl({"-create", "/groups/" + name, "gid", gid});
        if (!users.empty()) {
            nicl({"-create", "/groups/" + name, "users"});
        }
        for (const std::string& user : users) {
            nicl({"-append", "/groups/" + name, "users", user});
        }
    }

    /// Adds a record as the share editor writes it.
    void addShare(const std::string& name, const std::string& folder, const std::string& afpShared = "1") {
        nicl({"-create", "/config/Brindle/" + name});
        nicl({"-create", "/config/Brindle/" + name, "directory_path", folder});
        nicl({"-create", "/config/Brindle/" + name, "afp_shared", afpShared});
        nicl({"-create", "/config/Brindle/" + name, "afp_name", name});
        nicl({"-create", "/config/Brindle/" + name, "afp_use_parent_privs", "0"});
        nicl({"-create", "/config/Brindle/" + name, "afp_use_parent_owner", "0"});
    }

    /// Loads the main window and launches. `launches` is the previous launch counter, none for the first
    /// launch; with 11 no donation is asked for.
    void start(std::optional<std::int32_t> launches = 11) {
        if (launches) {
            NSUserDefaults::standardUserDefaults().setInteger(*launches, "BrindleDonationReminder");
        }
        load();
        NSApp().finishLaunching();
        host.events.clear();
        host.runs.clear();
    }

    void load() {
        interface = std::move(*BRController::loadInterface());
        controller = static_cast<BRController*>(interface->owner());
    }

    /// Returns the control with that name in the main interface file.
    template <class Kind>
    Kind& control(const std::string& name) {
        auto* found = dynamic_cast<Kind*>(interface->find(name));
        if (found == nullptr) {
            throw std::logic_error("the window has no such control: " + name);
        }
        return *found;
    }

    /// Sends an operation like the control that is wired to it.
    void send(const std::string& operation) {
        NSControl* sender = interface->findWiredTo(operation);
        if (sender == nullptr) {
            throw std::logic_error("nothing is wired to " + operation);
        }
        sender->sendAction();
    }

    std::string text(const std::string& field) { return control<NSTextField>(field).stringValue(); }

    void type(const std::string& field, const std::string& text) {
        NSTextField& edited = control<NSTextField>(field);
        const NSRange all{0, utf16Length(edited.stringValue())};
        ASSERT_TRUE(edited.proposeEdit(text, utf16Length(text), all)) << field << " refuses " << text;
    }

    /// Returns the texts of one column, row by row.
    std::vector<std::string> columnOf(const std::string& table, const std::string& identifier) {
        NSTableView& view = control<NSTableView>(table);
        std::vector<std::string> values;
        for (int row = 0; row < view.numberOfRows(); ++row) {
            values.push_back(view.objectValue({.identifier = identifier, .title = {}}, row));
        }
        return values;
    }

    /// The controller, with the application's controls as its outlets.
    [[nodiscard]] BRController& app() const { return *controller; }

    /// Returns the runs since the last call.
    std::vector<std::string> takeRuns() {
        std::vector<std::string> texts = host.runTexts();
        host.runs.clear();
        return texts;
    }

    /// Selects the first row of the table whose column shows `text`.
    void selectRow(NSTableView& table, const std::string& identifier, const std::string& text) {
        const std::vector<std::string> values = columnOf(table.name(), identifier);
        const auto found = std::ranges::find(values, text);
        ASSERT_NE(found, values.end()) << "no row shows " << text;
        table.selectRow(static_cast<int>(found - values.begin()));
    }

    TestHost host;
    std::unique_ptr<platform::Interface> interface;
    BRController* controller = nullptr; ///< made by the interface file
};
