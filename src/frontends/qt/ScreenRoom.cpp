#include "frontends/qt/ScreenRoom.h"

#include <QCoreApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace frontend {

namespace {

constexpr int titleHeight = 36; // of a window's frame, approximately
constexpr QSize handle(80, 20); ///< the part of the title that is enough to move the window with
constexpr const char* forgotten = "forgotScreenSize";

} // namespace

void forgetScreenSize() {
    QCoreApplication::instance()->setProperty(forgotten, true);
}

QSize fittedToScreen(const QWidget& window, QSize wanted) {
    const QScreen* screen = window.screen();
    if (screen == nullptr || QCoreApplication::instance()->property(forgotten).toBool()) {
        return wanted;
    }
    const QSize room = screen->availableGeometry().size() - QSize(0, titleHeight);
    return wanted.boundedTo(room);
}

QRect placeInView(QRect place, const std::vector<QRect>& screens) {
    if (screens.empty()) {
        return place;
    }
    const auto titleOn = [&place](const QRect& screen) {
        return screen.intersected(QRect(place.topLeft(), QSize(place.width(), titleHeight)));
    };
    const auto found = std::ranges::find_if(screens, [&titleOn](const QRect& screen) {
        const QRect title = titleOn(screen);
        return title.width() >= handle.width() && title.height() >= handle.height();
    });
    const QRect& screen = found == screens.end() ? screens.front() : *found;
    const QSize size = place.size().boundedTo(screen.size() - QSize(0, titleHeight));
    const int lowest = screen.y() + screen.height() - size.height() - titleHeight; // for the frame's top
    if (found == screens.end()) {
        QRect middle(QPoint(), size);
        middle.moveCenter(screen.center());
        middle.moveTop(std::min(middle.top(), lowest));
        return middle;
    }
    if (size != place.size()) { // it was made smaller, so it fits somewhere
        place.setSize(size);
        place.moveTo(std::clamp(place.x(), screen.x(), screen.x() + screen.width() - size.width()),
                     std::clamp(place.y(), screen.y(), lowest));
    }
    return place;
}

} // namespace frontend
