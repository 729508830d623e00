#include "platform/appkit/NSPopUpButton.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace {

template <class Matches>
int indexOfItem(const std::vector<NSPopUpButton::Item>& items, Matches matches) {
    const auto found = std::find_if(items.begin(), items.end(), matches);
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

} // namespace

std::vector<std::string> NSPopUpButton::itemTitles() const {
    std::vector<std::string> titles;
    titles.reserve(items_.size());
    for (const Item& item : items_) {
        titles.push_back(item.title);
    }
    return titles;
}

void NSPopUpButton::addItemWithTitle(std::string title) {
    items_.push_back({std::move(title), 0});
    ++content_;
    if (items_.size() == 1) {
        selected_ = 0;
    }
    didChange();
}

void NSPopUpButton::addItems(std::vector<Item> items) {
    const bool wasEmpty = items_.empty();
    if (wasEmpty) {
        items_ = std::move(items);
    } else {
        std::ranges::move(items, std::back_inserter(items_));
    }
    ++content_;
    if (wasEmpty && !items_.empty()) {
        selected_ = 0;
    }
    didChange();
}

void NSPopUpButton::removeAllItems() {
    items_.clear();
    ++content_;
    selected_ = -1;
    didChange();
}

void NSPopUpButton::setTag(int index, std::int64_t tag) {
    if (index < 0 || index >= numberOfItems()) {
        throw std::out_of_range(stringWithFormat("the menu has no item %d to give the tag %d", index, tag));
    }
    items_[static_cast<std::size_t>(index)].tag = tag;
}

int NSPopUpButton::indexOfItemWithTitle(const std::string& title) const {
    return indexOfItem(items_, [&title](const Item& item) { return item.title == title; });
}

int NSPopUpButton::indexOfItemWithTag(std::int64_t tag) const {
    return indexOfItem(items_, [tag](const Item& item) { return item.tag == tag; });
}

std::optional<std::string> NSPopUpButton::titleOfSelectedItem() const {
    if (selected_ < 0) {
        return std::nullopt;
    }
    return items_[static_cast<std::size_t>(selected_)].title;
}

std::int64_t NSPopUpButton::tagOfSelectedItem() const {
    return selected_ < 0 ? 0 : items_[static_cast<std::size_t>(selected_)].tag;
}

void NSPopUpButton::selectItemAtIndex(int index) {
    if (index < -1 || index >= numberOfItems()) {
        throw std::out_of_range(
            stringWithFormat("the menu has no item %d to select: it has %d items", index, numberOfItems()));
    }
    selected_ = index;
    didChange();
}

void NSPopUpButton::selectItemWithTitle(const std::string& title) {
    selectItemAtIndex(indexOfItemWithTitle(title));
}

std::optional<std::string> NSPopUpButton::edit() const {
    const bool stands = chosen_ && chosen_ == titleOfSelectedItem();
    return stands ? std::optional(std::to_string(indexOfSelectedItem())) : std::nullopt;
}

void NSPopUpButton::copyState(const Element& from) {
    NSControl::copyState(from);
    const auto& other = dynamic_cast<const NSPopUpButton&>(from);
    items_ = other.items_;
    ++content_;
    selected_ = other.selected_;
    chosen_ = other.chosen_;
}

void NSPopUpButton::performSelect(int index) {
    if (!isEnabled() || index < 0 || index >= numberOfItems()) {
        return;
    }
    selectItemAtIndex(index);
    chosen_ = titleOfSelectedItem();
    sendAction();
}
