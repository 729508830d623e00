#include "frontends/qt/Snapshots.h"

#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/ReviewDialog.h"
#include "frontends/qt/ScreenRoom.h"
#include "frontends/qt/WindowInquiries.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "review/Reviewer.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QPalette>
#include <QPixmap>
#include <QPushButton>
#include <QStyle>

#include <stdexcept>
#include <vector>

namespace frontend {

using platform::InterfaceKind;
using platform::InterfaceNode;
using platform::Status;

namespace {

template <class Model>
std::vector<Model*> modelsIn(const InterfaceNode& node) {
    std::vector<Model*> models;
    visitNodes(node, [&models](const InterfaceNode& each) {
        if (auto* model = modelOf<Model>(each)) {
            models.push_back(model);
        }
    });
    return models;
}

/// Returns the first node of the kind in the tree, or null.
const InterfaceNode* firstOf(const InterfaceNode& tree, InterfaceKind kind) {
    const InterfaceNode* found = nullptr;
    visitNodes(tree, [&found, kind](const InterfaceNode& each) {
        if (found == nullptr && each.kind == kind) {
            found = &each;
        }
    });
    return found;
}

/// Makes a part of a file's name: "afp" of "AFP", "log-files" of "Log Files", "password" of "passwordWindow".
QString fileName(const std::string& name) {
    QString text = shown(name);
    if (text.endsWith(QLatin1String("Window"))) {
        text.chop(6);
    }
    QString slug;
    for (const QChar letter : text) {
        const bool isGap = !letter.isLetterOrNumber();
        if ((isGap && slug.endsWith(QLatin1Char('-'))) || (isGap && slug.isEmpty())) {
            continue;
        }
        slug += isGap ? QChar(QLatin1Char('-')) : letter.toLower();
    }
    return slug;
}

/// Reads a size such as "1024x600"; returns an invalid one for any other text.
QSize sizeFrom(const QString& text) {
    const QStringList parts = text.split(QLatin1Char('x'));
    return parts.size() == 2 ? QSize(parts[0].toInt(), parts[1].toInt()) : QSize();
}

/// Returns a desktop's colours, including those that Qt would derive differently.
QPalette desktopColours(const QColor& window, const QColor& base, const QColor& highlight,
                        const QColor& highlightedText) {
    QPalette palette(window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, highlightedText);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, Qt::gray);
    }
    QApplication::style()->polish(palette); // as it does with the colours of a real desktop
    return palette;
}

/// The environment may ask for a size of the main window and for other colours, to show the window as it
/// looks on other desktops.
Status followWishes(QtPresenter& presenter) {
    const QString colours = qEnvironmentVariable("BRINDLE_SNAPSHOT_COLORS");
    const QString text = qEnvironmentVariable("BRINDLE_SNAPSHOT_SIZE");
    if (colours == QLatin1String("dark")) {
        QApplication::setPalette(
            desktopColours(QColor(0x2a2e32), QColor(0x1b1e20), QColor(0x2f7fb5), Qt::white));
    } else if (colours == QLatin1String("contrast")) {
        QApplication::setPalette(desktopColours(Qt::black, Qt::black, Qt::yellow, Qt::black));
    } else if (!colours.isEmpty()) {
        return Status::failure("there are no such colours", colours.toStdString(), "choose dark or contrast");
    }
    if (text.isEmpty()) {
        return {};
    }
    const QSize size = sizeFrom(text);
    const NSWindow* main = NSApp().mainWindow();
    const WindowView* view = main == nullptr ? nullptr : presenter.viewOf(*main);
    if (view == nullptr || size.isEmpty()) {
        return Status::failure("this is not a size", text.toStdString(), "write one like 1024x600");
    }
    view->widget().setMaximumSize(size); // as on a screen of that size
    view->widget().resize(size);
    return {};
}

/// Takes the pictures.
class Photographer {
  public:
    Photographer(QtPresenter& presenter, const QString& folder) : presenter_(presenter), folder_(folder) {}

    void photograph(const InterfaceNode& interface);

    /// The first failure, if there was one.
    [[nodiscard]] const Status& status() const { return status_; }

  private:
    void photographMain(const InterfaceNode& node);
    void photographPage(const InterfaceNode& window, const InterfaceNode& page, const QString& name);
    void take(const InterfaceNode& window, const QString& name);
    void take(QWidget& widget, const QString& name);
    void takeHidden(const InterfaceNode& window);
    void takeReview(const QString& name);
    void takeInquiries();
    void takeDialog(QDialog& dialog, const QString& name);
    void selectPage(const InterfaceNode& around, NSTabView& tabView, int page);
    void act(const std::function<void()>& event);

    QtPresenter& presenter_;
    QDir folder_;
    Status status_;
};

void Photographer::act(const std::function<void()>& event) {
    presenter_.queue().runUserEvent(event);
    QApplication::processEvents();
}

void Photographer::take(const InterfaceNode& window, const QString& name) {
    const WindowView* view = presenter_.viewOf(*modelOf<NSWindow>(window));
    if (view == nullptr) {
        throw std::logic_error("no window for the picture " + name.toStdString());
    }
    take(view->widget(), name);
}

void Photographer::take(QWidget& widget, const QString& name) {
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest); // from what was just shown
    const QString path = folder_.filePath(name + QLatin1String(".png"));
    if (!widget.grab().save(path) && status_.isOk()) {
        status_ = Status::failure("cannot write the picture", path.toStdString(),
                                  "check that the folder can be written to and has room");
    }
}

void Photographer::takeHidden(const InterfaceNode& window) {
    const std::string& name = modelOf<NSWindow>(window)->name();
    const WindowView* view = presenter_.viewOf(*modelOf<NSWindow>(window));
    const bool isHidden = view != nullptr && !view->widget().isVisible();
    if (isHidden) { // a window gets its mnemonics when it is shown
        view->widget().setAttribute(Qt::WA_DontShowOnScreen, true);
        view->widget().show();
    }
    take(window, fileName(name));
    if (isHidden) {
        view->widget().hide();
        view->widget().setAttribute(Qt::WA_DontShowOnScreen, false);
    }
}

void Photographer::selectPage(const InterfaceNode& around, NSTabView& tabView, int page) {
    // If a pop-up selects the pages, use it, so that the picture shows the page with its name.
    for (NSPopUpButton* popUp : modelsIn<NSPopUpButton>(around)) {
        if (!tabView.showsTabs() && popUp->itemTitles() == tabView.labels()) {
            act([popUp, page] { popUp->performSelect(page); });
        }
    }
    act([&tabView, page] { tabView.selectTabViewItemAtIndex(page); });
}

void Photographer::photographPage(const InterfaceNode& window, const InterfaceNode& page,
                                  const QString& name) {
    const InterfaceNode* inner = firstOf(page, InterfaceKind::TabView);
    if (inner == nullptr) {
        take(window, name);
        return;
    }
    auto& tabView = *modelOf<NSTabView>(*inner);
    for (int each = 0; each < tabView.numberOfTabViewItems(); ++each) {
        selectPage(page, tabView, each);
        const InterfaceNode& shownPage = *inner->children[static_cast<std::size_t>(each)];
        take(window, name + QLatin1Char('-') + fileName(shownPage.key("label")));
    }
    selectPage(page, tabView, 0);
}

void Photographer::photographMain(const InterfaceNode& node) {
    act([&node] { modelOf<NSWindow>(node)->makeKeyAndOrderFront(); });
    const InterfaceNode* tabs = firstOf(node, InterfaceKind::TabView);
    if (tabs == nullptr) {
        take(node, fileName(modelOf<NSWindow>(node)->name()));
        return;
    }
    for (NSTableView* table : modelsIn<NSTableView>(node)) {
        act([table] { table->selectRow(0); }); // a filled editor shows more
    }
    auto& tabView = *modelOf<NSTabView>(*tabs);
    for (int page = 0; page < tabView.numberOfTabViewItems(); ++page) {
        selectPage(node, tabView, page);
        const InterfaceNode& shownPage = *tabs->children[static_cast<std::size_t>(page)];
        const QString name = fileName(shownPage.key("label"));
        photographPage(node, shownPage, name);
        const InterfaceNode* drawer = page == 0 ? firstOf(node, InterfaceKind::Drawer) : nullptr;
        if (drawer != nullptr) {
            act([drawer] { modelOf<NSDrawer>(*drawer)->open(); });
            take(node, name + QLatin1String("-drawer"));
            takeReview(QStringLiteral("review"));
            takeInquiries();
            act([drawer] { modelOf<NSDrawer>(*drawer)->close(); });
        }
    }
    selectPage(node, tabView, 0);
}

void Photographer::takeReview(const QString& name) {
    if (presenter_.reviewer() == nullptr) {
        return;
    }
    const auto dialog = makePlanDialog(presenter_.reviewer()->planSend("createShare:"), nullptr);
    takeDialog(*dialog, name);
    for (auto* button : dialog->findChildren<QPushButton*>()) {
        if (button->isCheckable()) { // "Details"
            button->click();
            take(*dialog, name + QLatin1String("-details"));
        }
    }
}

void Photographer::takeDialog(QDialog& dialog, const QString& name) {
    dialog.setAttribute(Qt::WA_DontShowOnScreen, true);
    dialog.show();
    take(dialog, name);
}

void Photographer::takeInquiries() {
    if (WindowInquiries* inquiries = presenter_.inquiries()) {
        takeDialog(*inquiries->makeAccessDialog(nullptr), QStringLiteral("check-access"));
        takeDialog(*inquiries->makeFindingsDialog(nullptr), QStringLiteral("check-computer"));
        takeDialog(*inquiries->makeSessionsDialog(nullptr), QStringLiteral("connected"));
    }
}

void Photographer::photograph(const InterfaceNode& interface) {
    for (const auto& node : interface.children) {
        const auto* window = modelOf<NSWindow>(*node);
        if (window != nullptr && window->kind() == NSWindowKind::Main) {
            photographMain(*node);
        } else if (window != nullptr) {
            takeHidden(*node);
        }
    }
    visitNodes(interface, [this](const InterfaceNode& item) {
        if (item.attribute("role") == "about" && item.element) {
            act([&item] { modelOf<NSMenuItem>(item)->performClick(); });
        }
    });
}

} // namespace

Status writeSnapshots(QtPresenter& presenter, const std::string& folder) {
    if (Status status = followWishes(presenter); !status.isOk()) {
        return status;
    }
    if (!QDir().mkpath(shown(folder))) {
        return Status::failure("cannot make the folder", folder, "choose one that you may write to");
    }
    forgetScreenSize();
    Photographer photographer(presenter, shown(folder));
    // An interface may load another one, which is appended to the list: the About panel's.
    for (std::size_t next = 0; next < presenter.interfaces().size() && photographer.status().isOk(); ++next) {
        photographer.photograph(presenter.interfaces()[next]->root());
    }
    return photographer.status();
}

} // namespace frontend
