#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/Sessions.h"
#include "review/ConnectedClients.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace frontend {

/// Shows who is connected to the SMB server: a row for each session, and below it its shares and open files.
/// "Disconnect" ends, after asking, all connections of the session's computer, or all connections to the
/// share if a share is selected.
class SessionsDialog : public QDialog {
  public:
    struct Server {
        std::function<platform::Result<std::vector<platform::Session>>()> sessions;
        std::function<bool(review::Disconnection kind, const std::string& what)> disconnect;
    };

    SessionsDialog(Server server, QWidget* parent);

  private:
    void fill();
    void disconnectSelected();
    void updateButton();

    Server server_;
    QLabel* summary_ = nullptr;
    QTreeWidget* list_ = nullptr;
    QPushButton* disconnect_ = nullptr;
};

} // namespace frontend
