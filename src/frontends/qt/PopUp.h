#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSPopUpButton.h"

#include <QAbstractListModel>
#include <QComboBox>
#include <QPointer>

#include <cstdint>

namespace frontend {

class SearchList;

/// Shows a pop-up's items without copying them.
class PopUpItems : public QAbstractListModel {
  public:
    explicit PopUpItems(NSPopUpButton& popUp)
        : popUp_(popUp), rows_(popUp.numberOfItems()), content_(popUp.content()) {}

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

    /// Tells Qt that the items may have changed.
    void reload();

  private:
    NSPopUpButton& popUp_;
    int rows_;              ///< the number last reported to Qt
    std::uint64_t content_; ///< the content last reported to Qt
};

/// The widget for a pop-up menu. Choosing the selected item again counts as a choice; typing selects the item
/// that begins with the typed text; the mouse wheel does nothing, because it scrolls the page. A menu with
/// many items opens as a searchable list.
class PopUp : public QComboBox {
    Q_OBJECT

  public:
    /// With `longList`, there may be many items, and they do not determine the width.
    PopUp(NSPopUpButton& popUp, bool longList, RefreshQueue& queue);

    void showPopup() override;
    void hidePopup() override;

    /// Returns the list that opens: for many items, the searchable one.
    [[nodiscard]] QWidget* list() const;

    [[nodiscard]] bool isOpen() const { return list()->isVisible(); }

  protected:
    void wheelEvent(QWheelEvent* event) override;

  private:
    void load();
    void userChose(int index);

    NSPopUpButton& popUp_;
    RefreshQueue& queue_;
    PopUpItems items_;
    QPointer<SearchList> searched_; ///< a closed one is destroyed later
};

} // namespace frontend
