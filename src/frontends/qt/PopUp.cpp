#include "frontends/qt/PopUp.h"

#include "frontends/qt/SearchList.h"

#include <QListView>
#include <QWheelEvent>

namespace frontend {

namespace {

constexpr int longListLength = 14; ///< the width of a pop-up with a long list, in letters
constexpr int mostWithoutSearch = 20;

} // namespace

int PopUpItems::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

QVariant PopUpItems::data(const QModelIndex& index, int role) const {
    const auto row = static_cast<std::size_t>(index.row());
    if ((role != Qt::DisplayRole && role != Qt::EditRole) || row >= popUp_.items().size()) {
        return {}; // the items may have been removed since Qt was told
    }
    return shown(popUp_.items()[row].title);
}

void PopUpItems::reload() {
    if (content_ == popUp_.content()) {
        return; // only the selection changed: do not look at a hundred thousand items again
    }
    beginResetModel();
    content_ = popUp_.content();
    rows_ = popUp_.numberOfItems();
    endResetModel();
}

PopUp::PopUp(NSPopUpButton& popUp, bool longList, RefreshQueue& queue)
    : popUp_(popUp), queue_(queue), items_(popUp) {
    if (longList) {
        auto* list = new QListView(this);
        list->setUniformItemSizes(true); // otherwise Qt measures every item
        setView(list);
        setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
        setMinimumContentsLength(longListLength);
        setIconSize(QSize(1, 1)); // leave no room for icons
    } else {
        setSizeAdjustPolicy(AdjustToContents);
    }
    setModel(&items_);
    connect(this, &QComboBox::activated, this, &PopUp::userChose);
    new Binding(this, queue, popUp.changed, [this] { load(); });
}

void PopUp::load() {
    setEnabled(popUp_.isEnabled());
    items_.reload();
    setCurrentIndex(popUp_.indexOfSelectedItem());
}

void PopUp::showPopup() {
    if (popUp_.numberOfItems() <= mostWithoutSearch) {
        QComboBox::showPopup();
        return;
    }
    hidePopup();
    auto* list = new SearchList(popUp_.itemTitles(), popUp_.indexOfSelectedItem(), *this);
    connect(list, &SearchList::chosen, this, &PopUp::userChose);
    searched_ = list;
    list->open();
}

void PopUp::hidePopup() {
    if (searched_ != nullptr) {
        searched_->close();
    }
    QComboBox::hidePopup();
}

QWidget* PopUp::list() const {
    return searched_ != nullptr && searched_->isVisible() ? static_cast<QWidget*>(searched_) : view();
}

void PopUp::userChose(int index) {
    queue_.runUserEvent([this, index] { popUp_.performSelect(index); });
    if (currentIndex() != popUp_.indexOfSelectedItem()) {
        setCurrentIndex(popUp_.indexOfSelectedItem());
    }
}

void PopUp::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace frontend
