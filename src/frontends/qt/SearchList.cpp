#include "frontends/qt/SearchList.h"

#include "frontends/qt/Binding.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace frontend {

namespace {

constexpr int shownRows = 16;
constexpr int leastWidth = 240;
constexpr int margin = 4;

bool movesInList(int key) {
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

} // namespace

SearchedTitles::SearchedTitles(std::vector<std::string> titles)
    : titles_(std::move(titles)),
      rows_([this](int row, int /*column*/) { return titles_[static_cast<std::size_t>(row)]; }, 1) {
    rows_.setLength(static_cast<int>(titles_.size()));
}

int SearchedTitles::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_.count();
}

QVariant SearchedTitles::data(const QModelIndex& index, int role) const {
    return role == Qt::DisplayRole
               ? QVariant(shown(titles_[static_cast<std::size_t>(rows_.rowAt(index.row()))]))
               : QVariant();
}

void SearchedTitles::search(const std::string& text) {
    beginResetModel();
    rows_.setFilter(text);
    rows_.arrange({});
    endResetModel();
}

SearchList::SearchList(std::vector<std::string> titles, int selected, QWidget& menu)
    : QFrame(&menu, Qt::Popup), menu_(menu), titles_(std::move(titles)), selected_(selected),
      field_(new QLineEdit), list_(new QListView) {
    setObjectName(menu.objectName() + QLatin1String("Search"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameStyle(static_cast<int>(QFrame::StyledPanel) | static_cast<int>(QFrame::Plain));
    field_->setPlaceholderText(localized("Search"));
    field_->setAccessibleName(field_->placeholderText());
    field_->setClearButtonEnabled(true);
    list_->setAccessibleName(menu.accessibleName());
    list_->setUniformItemSizes(true); // otherwise Qt measures every item
    list_->setEditTriggers(QListView::NoEditTriggers);
    list_->setFocusPolicy(Qt::NoFocus); // keys go to the field, which forwards them
    list_->setModel(&titles_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(margin);
    layout->addWidget(field_);
    layout->addWidget(list_, 1);
    setFocusProxy(field_);
    field_->installEventFilter(this);
    connect(field_, &QLineEdit::textChanged, this, &SearchList::search);
    connect(list_, &QListView::clicked, this, &SearchList::choose);
    list_->setCurrentIndex(titles_.index(selected, 0));
}

void SearchList::open() {
    const int rowHeight = list_->sizeHintForRow(0);
    const int height = field_->sizeHint().height() + 3 * margin + 2 * frameWidth() +
                       std::min(shownRows, titles_.rowCount()) * rowHeight + 2 * list_->frameWidth();
    const QRect below(menu_.mapToGlobal(QPoint(0, menu_.height())),
                      QSize(std::max(menu_.width(), leastWidth), height));
    const QRect screen = menu_.screen()->availableGeometry();
    const int roomBelow = screen.bottom() + 1 - below.top();
    const int roomAbove = below.top() - menu_.height() - screen.top();
    QRect place = below;
    if (height > roomBelow && roomAbove > roomBelow) {
        place.setHeight(std::min(height, roomAbove));
        place.moveBottom(below.top() - menu_.height() - 1);
    } else {
        place.setHeight(std::min(height, roomBelow));
    }
    place.moveLeft(
        std::clamp(place.left(), screen.left(), std::max(screen.left(), screen.right() + 1 - place.width())));
    setGeometry(place);
    show();
    field_->setFocus(Qt::PopupFocusReason);
    list_->scrollTo(list_->currentIndex(), QListView::PositionAtCenter);
}

void SearchList::search(const QString& text) {
    titles_.search(text.toStdString());
    // Return takes the current item: the first match.
    list_->setCurrentIndex(titles_.index(text.isEmpty() ? selected_ : 0, 0));
    list_->scrollTo(list_->currentIndex());
}

void SearchList::choose(const QModelIndex& index) {
    if (index.isValid()) {
        const int title = titles_.rows().rowAt(index.row());
        close();
        Q_EMIT chosen(title);
    }
}

bool SearchList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QFrame::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Escape:
        close();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(list_->currentIndex());
        return true;
    default:
        if (movesInList(key->key())) {
            QCoreApplication::sendEvent(list_, event);
            return true;
        }
        return QFrame::eventFilter(watched, event);
    }
}

void SearchList::mousePressEvent(QMouseEvent* event) {
    // A press on the menu itself closes the list, and must not open it again.
    setAttribute(Qt::WA_NoMouseReplay,
                 menu_.rect().contains(menu_.mapFromGlobal(event->globalPosition().toPoint())));
    QFrame::mousePressEvent(event);
}

} // namespace frontend
