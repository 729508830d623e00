#pragma once

#include "platform/host/DirectoryAccounts.h"
#include "review/History.h"
#include "review/Reviewer.h"
#include "support/MainWindowFixture.h"

#include <optional>

/// The application's own window with a reviewer and a history.
class WindowWithHistory : public MainWindow {
  protected:
    void openWithHistory() {
        platform::Services services = host.host().services();
        services.historyFile = (host.root() / "history.db").string();
        services.accountNames = std::make_shared<platform::DirectoryAccounts>(host.storeFile().string());
        history.emplace(services);
        inner.emplace(std::move(services));
        open();
        reviewer.emplace(*interface);
        frontend->useReviewer(*reviewer);
        frontend->useHistory(*history);
        NSApp().dispatch([] {}); // ends the action of the start
        QApplication::processEvents();
    }

    void openWithDoctor() {
        openWithHistory();
        // A root's, so that nothing of this machine is examined.
        frontend->useDoctor(
            {platform::SambaPaths{(host.root() / "samba").string(), (host.root() / "etc/smb.conf").string(),
                                  host.storeFile().string()},
             "brindle"});
    }

    void TearDown() override {
        MainWindow::TearDown();
        reviewer.reset();
        interface.reset();
        history.reset();
        inner.reset();
    }

    std::optional<review::History> history;
    std::optional<platform::Host> inner;
    std::optional<review::Reviewer> reviewer;
};
