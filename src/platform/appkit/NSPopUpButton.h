#pragma once

#include "platform/appkit/NSControl.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A pop-up menu of items with titles and tags, of which one or none is selected. Items are numbered from 0.
class NSPopUpButton : public NSControl {
  public:
    struct Item {
        std::string title;
        std::int64_t tag = 0;
    };

    [[nodiscard]] const std::vector<Item>& items() const { return items_; }

    /// A number that changes whenever items are added or removed, so that a front-end reads the items again
    /// only then.
    [[nodiscard]] std::uint64_t content() const { return content_; }

    [[nodiscard]] int numberOfItems() const { return static_cast<int>(items_.size()); }

    [[nodiscard]] std::vector<std::string> itemTitles() const;

    /// Adds an item with tag 0 at the end. The first item of an empty menu becomes the selected one.
    void addItemWithTitle(std::string title);
    /// Adds the items at the end, as addItemWithTitle does.
    void addItems(std::vector<Item> items);
    /// Removes all items; nothing is selected then.
    void removeAllItems();
    /// Gives the item at `index` a tag. Throws std::out_of_range when there is no such item.
    void setTag(int index, std::int64_t tag);

    /// The index of the first item with the title, or -1.
    [[nodiscard]] int indexOfItemWithTitle(const std::string& title) const;
    /// The index of the first item with the tag, or -1.
    [[nodiscard]] int indexOfItemWithTag(std::int64_t tag) const;

    /// -1 when nothing is selected.
    [[nodiscard]] int indexOfSelectedItem() const { return selected_; }

    /// None when nothing is selected.
    [[nodiscard]] std::optional<std::string> titleOfSelectedItem() const;
    /// 0 when nothing is selected.
    [[nodiscard]] std::int64_t tagOfSelectedItem() const;

    /// -1 selects nothing. Throws std::out_of_range for another index without an item.
    void selectItemAtIndex(int index);
    /// Selects the first item with the title; nothing when there is none.
    void selectItemWithTitle(const std::string& title);

    /// The index of the selected item, if its title is still the one that the user last chose, even if the
    /// menu has been refilled since.
    [[nodiscard]] std::optional<std::string> edit() const override;

    void forgetEdit() override { chosen_.reset(); }

    void copyState(const Element& from) override;

    /// Does what a user's choice does: selects the item, then sends the action, even when it was selected
    /// already. Does nothing while disabled or when there is no such item.
    void performSelect(int index);

  private:
    std::vector<Item> items_;
    std::uint64_t content_ = 0;
    int selected_ = -1;
    std::optional<std::string> chosen_; ///< the title that a user chose last
};
