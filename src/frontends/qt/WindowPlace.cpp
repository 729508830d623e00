#include "frontends/qt/WindowPlace.h"

#include "frontends/qt/Drawer.h"
#include "frontends/qt/ScreenRoom.h"
#include "frontends/qt/WindowNames.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/NSUserDefaults.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>

#include <utility>
#include <vector>

namespace frontend {

namespace {

constexpr int settleTime = 300; // milliseconds
constexpr int drawersPage = sharesPage;

std::vector<QRect> freeAreas() {
    std::vector<QRect> areas;
    for (const QScreen* screen : QGuiApplication::screens()) { // the main one first
        areas.push_back(screen->availableGeometry());
    }
    return areas;
}

} // namespace

WindowPlace::WindowPlace(const NSWindow& model, NSTabView* tabs, QMainWindow& window)
    : QObject(&window), key_("BrindleWindow." + model.name()), tabs_(tabs), window_(window),
      drawer_(window.findChild<Drawer*>()) {
    settled_.setSingleShot(true);
    settled_.setInterval(settleTime);
    connect(&settled_, &QTimer::timeout, this, &WindowPlace::remember);
    if (drawer_ != nullptr) {
        drawerChanged_ = drawer_->model().changed.connect([this] { drawerChanged(); });
    }
    if (tabs_ != nullptr) {
        page_ = tabs_->indexOfSelectedTabViewItem();
        pageChanged_ = tabs_->changed.connect([this] { pageChanged(); });
    }
    restore();
    window.installEventFilter(this);
}

void WindowPlace::restore() {
    window_.resize(fittedToScreen(window_, window_.size()));
    const auto text = NSUserDefaults::standardUserDefaults().stringForKey(key_);
    const auto parts = componentsSeparatedByString(text.value_or(""), "\t");
    if (parts.size() != 6) {
        return; // nothing stored yet, or by another version
    }
    const QRect left(intValue(parts[0]), intValue(parts[1]), intValue(parts[2]), intValue(parts[3]));
    if (left.isValid()) {
        place_ = placeInView(left, freeAreas());
        window_.move(place_.topLeft());
        window_.resize(place_.size());
    }
    if (parts[4] == "maximized") {
        window_.setWindowState(window_.windowState() | Qt::WindowMaximized);
    }
    if (drawer_ != nullptr && parts[5] == "open") {
        drawer_->model().open();
    }
}

void WindowPlace::remember() {
    constexpr Qt::WindowStates others = Qt::WindowMaximized | Qt::WindowFullScreen | Qt::WindowMinimized;
    if ((window_.windowState() & others) == Qt::WindowNoState) {
        place_ = QRect(window_.pos(), window_.size());
        if (drawer_ != nullptr) {
            place_.translate(drawer_->shifted(), 0);
            place_.setWidth(place_.width() - drawer_->grown());
        }
    }
    const bool isOpen = drawer_ != nullptr && (drawer_->model().isOpen() || comesBack_);
    NSUserDefaults::standardUserDefaults().setString(
        stringWithFormat("%d\t%d\t%d\t%d\t%@\t%@", place_.x(), place_.y(), place_.width(), place_.height(),
                         window_.windowState().testFlag(Qt::WindowMaximized) ? "maximized" : "normal",
                         isOpen ? "open" : "closed"),
        key_);
}

void WindowPlace::drawerChanged() {
    const bool isOpen = drawer_->model().isOpen();
    if (isOpen == std::exchange(isOpen_, isOpen)) {
        return;
    }
    if (!std::exchange(isLeft_, false)) {
        comesBack_ = false; // the user closed it, so it stays closed
    }
    settled_.start();
}

void WindowPlace::pageChanged() {
    const int page = tabs_->indexOfSelectedTabViewItem();
    if (page == std::exchange(page_, page) || drawer_ == nullptr) {
        return;
    }
    NSDrawer& drawer = drawer_->model();
    isLeft_ = page != drawersPage && drawer.isOpen();
    comesBack_ = comesBack_ || isLeft_;
    if (page == drawersPage && comesBack_) {
        drawer.open();
    }
}

bool WindowPlace::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowStateChange:
        if (window_.isVisible()) {
            settled_.start();
        }
        break;
    case QEvent::Hide:
        if (settled_.isActive() && platform::Host::currentIfAny() != nullptr) { // save the last change
            settled_.stop();
            remember();
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace frontend
