#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSTabView.h"

#include <QStackedWidget>
#include <QTabBar>

#include <functional>
#include <vector>

namespace frontend {

/// The widget for a tab view: the page, and a tab bar unless another control selects the page. A page is
/// built when it is first shown, or when the event loop is idle.
class TabView : public QWidget {
    Q_OBJECT

  public:
    using MakePage = std::function<QWidget*()>;

    TabView(NSTabView& tabView, std::vector<MakePage> pages, RefreshQueue& queue);

    /// The visible page.
    [[nodiscard]] const QWidget& currentPage() const { return *stack_->currentWidget(); }

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void load();
    void build(int page);
    void buildNext();

    NSTabView& tabView_;
    RefreshQueue& queue_;
    std::vector<MakePage> pages_; ///< empty functions for pages that are already built
    QTabBar* bar_ = nullptr;      ///< null when the tabs are hidden
    QStackedWidget* stack_;
};

} // namespace frontend
