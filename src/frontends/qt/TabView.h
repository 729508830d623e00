#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSTabView.h"

#include <QStackedWidget>
#include <QTabBar>

#include <functional>
#include <vector>

/// The widget of a tab view: a bar of labels, unless another control picks the page, and the page. A page is
/// built when it is first shown, or when the event loop is idle.
class TabView : public QWidget {
    Q_OBJECT

  public:
    using MakePage = std::function<QWidget*()>;

    TabView(NSTabView& tabView, std::vector<MakePage> pages, RefreshQueue& queue);

    /// The page in sight.
    [[nodiscard]] const QWidget& currentPage() const { return *stack_->currentWidget(); }

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void load();
    void build(int page);
    void buildNext();

    NSTabView& tabView_;
    RefreshQueue& queue_;
    std::vector<MakePage> pages_; ///< empty functions for pages that are built
    QTabBar* bar_ = nullptr;      ///< null when the tabs are hidden
    QStackedWidget* stack_;
};
