#include "platform/appkit/NSTabView.h"

#include "platform/foundation/NSString.h"

#include <stdexcept>
#include <utility>

void NSTabView::addTabViewItem(std::string label) {
    labels_.push_back(std::move(label));
    didChange();
}

void NSTabView::selectTabViewItemAtIndex(int index) {
    if (index < 0 || index >= numberOfTabViewItems()) {
        throw std::out_of_range(
            stringWithFormat("the tab view has no page %d: it has %d pages", index, numberOfTabViewItems()));
    }
    if (index == selected_) {
        return;
    }
    selected_ = index;
    didChange();
    if (delegate_ != nullptr) {
        delegate_->tabViewDidSelectTabViewItem(this, index);
    }
}

void NSTabView::copyState(const Element& from) {
    selected_ = dynamic_cast<const NSTabView&>(from).selected_;
}
