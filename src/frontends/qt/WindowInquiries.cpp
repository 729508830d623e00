#include "frontends/qt/WindowInquiries.h"

#include "access/AccessCheck.h"
#include "access/ServerAccounts.h"
#include "frontends/qt/AccessDialog.h"
#include "frontends/qt/Binding.h"
#include "frontends/qt/FindingsDialog.h"
#include "frontends/qt/Menus.h"
#include "frontends/qt/SessionsDialog.h"
#include "model/SMBConf.h"
#include "platform/foundation/Host.h"
#include "review/ConnectedClients.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QWidget>

#include <map>

namespace frontend {

namespace {

std::vector<std::string> namesIn(NSTableView& table, const char* identifier) {
    std::vector<std::string> names;
    const NSTableColumn* column = table.tableColumnWithIdentifier(identifier);
    const int rows = column == nullptr ? 0 : table.numberOfRows();
    for (int row = 0; row < rows; ++row) {
        names.push_back(table.objectValue(*column, row));
    }
    return names;
}

std::optional<std::string> selectedIn(NSTableView& table, const char* identifier) {
    const NSTableColumn* column = table.tableColumnWithIdentifier(identifier);
    return column == nullptr || table.selectedRow() < 0
               ? std::nullopt
               : std::optional(table.objectValue(*column, table.selectedRow()));
}

constexpr const char* shareColumn = "ShareName";
constexpr const char* userColumn = "User";

/// The questions for one list. Data that the answers share is read once.
struct Inquiry {
    explicit Inquiry(const std::optional<platform::SambaPaths>& root)
        : accounts(root ? std::optional<platform::SambaAccounts>(*root) : std::nullopt),
          check(conf, accounts, accesscheck::serverWith(conf, root.has_value())) {}

    SMBConf conf;
    accesscheck::ServerAccounts accounts;
    accesscheck::AccessCheck check;
};

} // namespace

WindowInquiries::WindowInquiries(accesscheck::ExaminedHost host, NSTableView& shares, NSTableView& users,
                                 QMainWindow& window, WindowReview* review, RefreshQueue& queue)
    : QObject(&window), host_(std::move(host)), shares_(shares), users_(users), queue_(queue) {
    auto* menu = new QMenu(localizedTitle("Check"), window.menuBar());
    menu->setObjectName("checkMenu");
    insertBeforeHelp(*window.menuBar(), *menu);
    using Make = std::unique_ptr<QDialog> (WindowInquiries::*)(QWidget*);
    const auto add = [&](const char* title, const char* name, Make make) {
        menu->addAction(localizedTitle(title), this,
                        [this, make, &window] {
                            QApplication::setOverrideCursor(Qt::WaitCursor);
                            const auto dialog = (this->*make)(&window);
                            QApplication::restoreOverrideCursor();
                            dialog->exec();
                        })
            ->setObjectName(name);
    };
    add("Check Access…", "checkAccess", &WindowInquiries::makeAccessDialog);
    add("Check This Computer…", "checkComputer", &WindowInquiries::makeFindingsDialog);
    menu->addSeparator();
    add("Who Is Connected…", "showSessions", &WindowInquiries::makeSessionsDialog);
    if (review != nullptr) {
        review->setShareRemarks([this](const SMBConf& conf, const std::vector<NormalShare>& rows) {
            std::multimap<std::string, std::string> remarks;
            for (const accesscheck::Finding& each : accesscheck::examineShares(host_, conf, rows)) {
                if (each.share && each.level == accesscheck::Finding::Level::Problem) {
                    remarks.emplace(*each.share, each.text);
                }
            }
            return remarks;
        });
    }
}

std::unique_ptr<QDialog> WindowInquiries::makeAccessDialog(QWidget* parent) {
    const auto inquiry = std::make_shared<std::unique_ptr<Inquiry>>();
    AccessDialog::Questions questions{
        namesIn(shares_, shareColumn), namesIn(users_, userColumn),
        [this, inquiry] { *inquiry = std::make_unique<Inquiry>(host_.root); },
        [inquiry](const std::string& share, const std::optional<std::string>& user) {
            return (*inquiry)->check.check(share, user);
        }};
    // The table of the visible page determines the subject.
    const QWidget* users = parent == nullptr ? nullptr : parent->findChild<QWidget*>(shown(users_.name()));
    const bool isAboutUser = users != nullptr && users->isVisible();
    return std::make_unique<AccessDialog>(
        std::move(questions), isAboutUser ? std::nullopt : selectedIn(shares_, shareColumn),
        isAboutUser ? selectedIn(users_, userColumn) : std::nullopt, parent);
}

std::unique_ptr<QDialog> WindowInquiries::makeFindingsDialog(QWidget* parent) {
    return std::make_unique<FindingsDialog>([this] { return accesscheck::examine(host_); }, parent);
}

std::unique_ptr<QDialog> WindowInquiries::makeSessionsDialog(QWidget* parent) {
    using Sessions = platform::Result<std::vector<platform::Session>>;
    const auto connected = [this] {
        Sessions sessions = std::vector<platform::Session>();
        queue_.runUserEvent([&] { sessions = review::connectedClients(host_.root); });
        return sessions;
    };
    const auto disconnect = [this](review::Disconnection kind, const std::string& what) {
        bool isDone = false;
        queue_.runUserEvent([&] { isDone = review::disconnect(kind, what); });
        return isDone;
    };
    return std::make_unique<SessionsDialog>(SessionsDialog::Server{connected, disconnect}, parent);
}

} // namespace frontend
