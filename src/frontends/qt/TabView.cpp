#include "frontends/qt/TabView.h"

#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace frontend {

TabView::TabView(NSTabView& tabView, std::vector<MakePage> pages, RefreshQueue& queue)
    : tabView_(tabView), queue_(queue), pages_(std::move(pages)), stack_(new QStackedWidget) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    if (tabView.showsTabs()) {
        bar_ = new QTabBar;
        bar_->setDocumentMode(true);
        bar_->setExpanding(false);
        bar_->setAccessibleName(localized("Page"));
        for (const std::string& label : tabView.labels()) {
            bar_->addTab(title(label));
        }
        connect(bar_, &QTabBar::currentChanged, this, [this](int page) {
            queue_.runUserEvent([this, page] { tabView_.selectTabViewItemAtIndex(page); });
            load();
        });
        layout->addWidget(bar_);
    }
    for (std::size_t page = 0; page < pages_.size(); ++page) {
        auto* holder = new QWidget;
        auto* inside = new QVBoxLayout(holder);
        inside->setContentsMargins(0, 0, 0, 0);
        stack_->addWidget(holder);
    }
    if (bar_ == nullptr) { // without a tab bar, draw a frame around the page
        stack_->setFrameStyle(static_cast<int>(QFrame::StyledPanel) | static_cast<int>(QFrame::Sunken));
    }
    layout->addWidget(stack_, 1);
    new Binding(this, queue, tabView.changed, [this] { load(); });
}

void TabView::load() {
    const int page = tabView_.indexOfSelectedTabViewItem();
    build(page);
    stack_->setCurrentIndex(page);
    if (bar_ != nullptr) {
        const QSignalBlocker block(bar_);
        bar_->setCurrentIndex(page);
    }
}

void TabView::build(int page) {
    if (page < 0 || page >= static_cast<int>(pages_.size())) {
        return;
    }
    if (const MakePage make = std::exchange(pages_[static_cast<std::size_t>(page)], nullptr)) {
        stack_->widget(page)->layout()->addWidget(make());
    }
}

void TabView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    afterFirstPaint(this, [this] { buildNext(); });
}

void TabView::buildNext() {
    const auto next =
        std::find_if(pages_.begin(), pages_.end(), [](const MakePage& make) { return bool(make); });
    if (next != pages_.end()) {
        build(static_cast<int>(next - pages_.begin()));
        QTimer::singleShot(0, this, &TabView::buildNext);
    }
}

} // namespace frontend
