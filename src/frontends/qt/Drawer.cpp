#include "frontends/qt/Drawer.h"

#include "frontends/qt/Inks.h"

#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace frontend {

namespace {

constexpr int slideTime = 180; // milliseconds

/// Makes a scroll area for the contents, which keep their width: they only scroll vertically.
QScrollArea* scrolled(QWidget* contents, int width) {
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    contents->setMinimumWidth(width - area->verticalScrollBar()->sizeHint().width());
    area->setWidgetResizable(true);
    area->setWidget(contents);
    area->setFocusPolicy(Qt::NoFocus); // its fields take the focus, and scroll into view
    return area;
}

QFrame* line(QFrame::Shape shape) {
    auto* drawn = new QFrame;
    drawn->setFrameStyle(static_cast<int>(shape) | static_cast<int>(QFrame::Sunken));
    return drawn;
}

/// Returns how much wider the window may become on its screen.
int roomBeside(const QWidget& window) {
    if (window.testAttribute(Qt::WA_DontShowOnScreen)) {
        return std::max(0, window.maximumWidth() - window.width()); // a requested picture size is the maximum
    }
    if (window.isMaximized() || window.isFullScreen() || window.screen() == nullptr) {
        return 0;
    }
    return std::max(0, window.screen()->availableGeometry().width() - window.frameGeometry().width());
}

} // namespace

Drawer::Drawer(NSDrawer& drawer, MakeParts makeParts, int width, int leastBeside, bool animated,
               RefreshQueue& queue)
    : drawer_(drawer), makeParts_(std::move(makeParts)), width_(width), leastBeside_(leastBeside),
      animated_(animated), holder_(new QWidget(this)) {
    setAutoFillBackground(true); // it may cover the page
    shade();
    setShownWidth(0);
    slide_.setDuration(slideTime);
    slide_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&slide_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { setShownWidth(value.toInt()); });
    new Binding(this, queue, drawer.changed, [this] { load(); });
    afterFirstPaint(this, [this] { build(); });
}

void Drawer::build() {
    const MakeParts makeParts = std::exchange(makeParts_, nullptr);
    if (!makeParts) {
        return;
    }
    const Parts parts = makeParts();
    auto* sides = new QHBoxLayout(holder_);
    sides->setContentsMargins(0, 0, 0, 0);
    sides->setSpacing(0);
    QFrame* edge = line(QFrame::VLine);
    sides->addWidget(edge);
    auto* inside = new QVBoxLayout;
    inside->setSpacing(0);
    inside->addWidget(scrolled(parts.contents, width_ - edge->sizeHint().width()), 1);
    if (parts.foot != nullptr) {
        inside->addWidget(line(QFrame::HLine));
        inside->addWidget(parts.foot);
    }
    sides->addLayout(inside, 1);
    // Sizes depend on the style, which would be applied only when they are shown.
    for (QWidget* each : holder_->findChildren<QWidget*>()) {
        each->ensurePolished();
    }
    sides->activate();
}

void Drawer::shade() {
    const QWidget* around = parentWidget();
    QPalette own;
    own.setColor(QPalette::Window, loweredWindow(around == nullptr ? QPalette() : around->palette()));
    if (own.color(QPalette::Window) != palette().color(QPalette::Window)) {
        setPalette(own);
    }
}

void Drawer::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        shade();
    }
    QWidget::changeEvent(event);
}

void Drawer::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    holder_->setGeometry(0, 0, width_, height());
}

void Drawer::load() {
    if (opened_ == drawer_.isOpen()) {
        return;
    }
    opened_ = drawer_.isOpen();
    if (opened_) {
        build();
        grow(*window());
        slideTo(width_);
    } else {
        slideTo(0);
        giveBack(*window());
    }
}

void Drawer::grow(QWidget& window) {
    const int growth = std::min(width_, roomBeside(window));
    grown_ = isBeside(window.width() + growth) ? growth : 0;
    if (grown_ == 0) {
        return;
    }
    window.resize(window.width() + grown_, window.height());
    if (!window.testAttribute(Qt::WA_DontShowOnScreen)) {
        const int right = window.screen()->availableGeometry().right();
        shifted_ = std::max(0, window.frameGeometry().right() - right);
        shiftedTo_ = window.x() - shifted_;
        window.move(shiftedTo_, window.y());
    }
}

void Drawer::giveBack(QWidget& window) {
    if (grown_ > 0 && !window.isMaximized() && !window.isFullScreen()) {
        window.resize(window.width() - grown_, window.height());
        window.move(window.x() + shifted(), window.y());
    }
    grown_ = 0;
    shifted_ = 0;
}

void Drawer::slideTo(int width) {
    slide_.stop();
    // Closing takes away the window's extra width at once, so only opening is animated.
    if (!animated_ || width == 0 || !window()->isVisible()) {
        setShownWidth(width);
        return;
    }
    setShownWidth(std::max(1, shownWidth_)); // so that its contents can take the focus at once
    slide_.setStartValue(shownWidth_);
    slide_.setEndValue(width);
    slide_.start();
}

void Drawer::setShownWidth(int width) {
    shownWidth_ = width;
    setVisible(width > 0);
    updateGeometry();
    if (QWidget* around = parentWidget(); around != nullptr && around->layout() != nullptr) {
        around->layout()->activate(); // a page beside it shrinks in the same step
    }
}

DrawerLayout::~DrawerLayout() = default;

void DrawerLayout::addItem(QLayoutItem* item) {
    items_.emplace_back(item);
}

QLayoutItem* DrawerLayout::itemAt(int index) const {
    return index < 0 || index >= count() ? nullptr : items_[static_cast<std::size_t>(index)].get();
}

QLayoutItem* DrawerLayout::takeAt(int index) {
    if (index < 0 || index >= count()) {
        return nullptr;
    }
    QLayoutItem* taken = items_[static_cast<std::size_t>(index)].release();
    items_.erase(items_.begin() + index);
    return taken;
}

void DrawerLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    QRect page = rect;
    for (const auto& item : items_) {
        const auto* drawer = qobject_cast<const Drawer*>(item->widget());
        if (drawer == nullptr) {
            continue;
        }
        const int shownWidth = std::min(drawer->shownWidth(), rect.width());
        QRect strip = rect;
        strip.setLeft(rect.right() + 1 - shownWidth);
        item->setGeometry(strip);
        item->widget()->raise();
        page.setWidth(drawer->isBeside(rect.width()) ? rect.width() - shownWidth : rect.width());
    }
    if (!items_.empty()) {
        items_.front()->setGeometry(page);
    }
}

QSize DrawerLayout::sizeHint() const {
    return items_.empty() ? QSize() : items_.front()->sizeHint();
}

QSize DrawerLayout::minimumSize() const {
    QSize least = items_.empty() ? QSize() : items_.front()->minimumSize();
    for (const auto& item : items_) {
        least.setHeight(std::max(least.height(), item->minimumSize().height()));
    }
    return least;
}

} // namespace frontend
