#include "frontends/qt/Drawer.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QScreen>
#include <QScrollBar>

#include <algorithm>

namespace {

constexpr int slideTime = 180;   // milliseconds
constexpr int shadeFactor = 103; // percent: the drawer lies a little lower than the window

/// The contents with the line that stands for the window's edge.
QWidget* besideEdge(QWidget* contents) {
    auto* holder = new QWidget;
    auto* edge = new QFrame;
    edge->setFrameStyle(static_cast<int>(QFrame::VLine) | static_cast<int>(QFrame::Sunken));
    auto* layout = new QHBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(edge);
    layout->addWidget(contents, 1);
    return holder;
}

/// Makes the window's smallest size the one that its widgets have now.
void settleLayouts(const QWidget& inner) {
    for (const QWidget* outer = inner.parentWidget(); outer != nullptr; outer = outer->parentWidget()) {
        if (outer->layout() != nullptr) {
            outer->layout()->activate();
        }
    }
}

/// How much wider the window may become on its screen.
int roomBeside(const QWidget& window) {
    if (window.testAttribute(Qt::WA_DontShowOnScreen)) {
        return QWIDGETSIZE_MAX;
    }
    if (window.isMaximized() || window.isFullScreen() || window.screen() == nullptr) {
        return 0;
    }
    return std::max(0, window.screen()->availableGeometry().width() - window.frameGeometry().width());
}

} // namespace

Drawer::Drawer(NSDrawer& drawer, QWidget* contents, int width, bool animated, RefreshQueue& queue)
    : drawer_(drawer), width_(width), animated_(animated) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus); // it scrolls to what has the cursor
    QPalette shade = palette();
    shade.setColor(QPalette::Window, shade.color(QPalette::Window).darker(shadeFactor));
    setPalette(shade);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The contents keep their width while the drawer slides, and scroll where the window is too low for them.
    contents->setMinimumWidth(width - verticalScrollBar()->sizeHint().width());
    setWidgetResizable(true);
    setWidget(besideEdge(contents));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setShownWidth(0);
    slide_.setDuration(slideTime);
    slide_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&slide_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { setShownWidth(value.toInt()); });
    new Binding(this, queue, drawer.changed, [this] { load(); });
}

void Drawer::load() {
    if (opened_ == drawer_.isOpen()) {
        return;
    }
    opened_ = drawer_.isOpen();
    QWidget* frame = window();
    if (opened_) {
        // By at least the width that the rest of the window cannot spare.
        const int needed = frame->minimumSizeHint().width() + width_ - frame->width();
        grown_ = std::max(std::min(width_, roomBeside(*frame)), needed);
        frame->resize(frame->width() + grown_, frame->height());
        slideTo(width_);
    } else {
        slideTo(0);
        settleLayouts(*this);
        if (!frame->isMaximized() && !frame->isFullScreen()) {
            frame->resize(frame->width() - grown_, frame->height());
        }
        grown_ = 0;
    }
}

void Drawer::slideTo(int width) {
    slide_.stop();
    // Closing takes the window's extra width away at once, so only opening is worth a movement.
    if (!animated_ || width == 0 || !window()->isVisible()) {
        setShownWidth(width);
        return;
    }
    setShownWidth(std::max(1, this->width())); // what is in it can have the cursor at once
    slide_.setStartValue(this->width());
    slide_.setEndValue(width);
    slide_.start();
}

void Drawer::setShownWidth(int width) {
    setFixedWidth(width);
    setVisible(width > 0);
}
