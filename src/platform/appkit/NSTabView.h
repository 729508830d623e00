#pragma once

#include "platform/appkit/Element.h"

#include <string>
#include <vector>

class NSTabView;

class NSTabViewDelegate {
  public:
    virtual ~NSTabViewDelegate() = default;
    /// The page at `index` is now shown.
    virtual void tabViewDidSelectTabViewItem(NSTabView* tabView, int index) = 0;
};

/// Pages, numbered from 0. One of them is shown. A front-end lets the user pick one by its label, unless the
/// tabs are hidden and another control picks the page.
class NSTabView : public platform::Element {
  public:
    [[nodiscard]] const std::vector<std::string>& labels() const { return labels_; }

    [[nodiscard]] int numberOfTabViewItems() const { return static_cast<int>(labels_.size()); }

    void addTabViewItem(std::string label);

    void setDelegate(NSTabViewDelegate* delegate) { delegate_ = delegate; }

    [[nodiscard]] bool showsTabs() const { return showsTabs_; }

    void setShowsTabs(bool shows) { showsTabs_ = shows; }

    /// 0 initially.
    [[nodiscard]] int indexOfSelectedTabViewItem() const { return selected_; }

    /// Shows a page and tells the delegate, unless it is shown already. Throws std::out_of_range when there
    /// is none.
    void selectTabViewItemAtIndex(int index);

    void copyState(const Element& from) override;

  private:
    std::vector<std::string> labels_;
    NSTabViewDelegate* delegate_ = nullptr;
    bool showsTabs_ = true;
    int selected_ = 0;
};
