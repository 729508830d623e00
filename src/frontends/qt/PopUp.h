#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSPopUpButton.h"

#include <QAbstractListModel>
#include <QComboBox>
#include <QPointer>

#include <cstdint>

class SearchList;

/// Shows a pop-up's items without copying them.
class PopUpItems : public QAbstractListModel {
  public:
    explicit PopUpItems(NSPopUpButton& popUp)
        : popUp_(popUp), rows_(popUp.numberOfItems()), content_(popUp.content()) {}

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

    /// The items may have changed.
    void reload();

  private:
    NSPopUpButton& popUp_;
    int rows_;              ///< as last reported to Qt
    std::uint64_t content_; ///< the same
};

/// The widget of a pop-up menu. Choosing the item that is selected already counts as a choice; typing selects
/// the item that begins with what is typed; the mouse wheel changes nothing, because a page is scrolled over
/// it. A menu of many items opens as a list that is searched.
class PopUp : public QComboBox {
    Q_OBJECT

  public:
    /// `longList`: the items may be many; they do not decide the width.
    PopUp(NSPopUpButton& popUp, bool longList, RefreshQueue& queue);

    void showPopup() override;
    void hidePopup() override;

    /// The list that stands open, or would; of many items the one that is searched.
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
    QPointer<SearchList> searched_; ///< closed ones go later
};
