#include "frontends/qt/DialogParts.h"

#include "frontends/qt/Binding.h"

#include <QDialog>
#include <QEvent>
#include <QHeaderView>

#include <algorithm>

namespace frontend {

namespace {

/// Gives a column of a list the width that the others leave. It is never narrower than can be read: then the
/// list scrolls instead.
class WideColumn : public QObject {
  public:
    WideColumn(QTreeWidget& list, int column) : QObject(&list), list_(list), column_(column) {
        list.viewport()->installEventFilter(this);
        connect(list.header(), &QHeaderView::sectionResized, this, [this](int section) {
            if (section != column_) {
                fit();
            }
        });
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Resize) {
            fit();
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    void fit() {
        constexpr int least = 200;
        const int others = list_.header()->length() - list_.header()->sectionSize(column_);
        list_.setColumnWidth(column_, std::max(least, list_.viewport()->width() - others));
    }

    QTreeWidget& list_;
    int column_;
};

} // namespace

QTreeWidget* makeList(const char* name, const QString& spoken, const QStringList& titles, int widest) {
    auto* list = new QTreeWidget;
    list->setObjectName(name);
    list->setAccessibleName(spoken);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setHeaderLabels(titles);
    list->header()->setStretchLastSection(false);
    new WideColumn(*list, widest); // a child of the list
    return list;
}

QPlainTextEdit* makeDetails(const char* name) {
    auto* details = new QPlainTextEdit;
    details->setObjectName(name);
    details->setAccessibleName(localized("Details"));
    details->setReadOnly(true);
    details->setTabChangesFocus(true);
    return details;
}

QDialogButtonBox* makeButtons(QDialog& dialog) {
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(localizedTitle("Close"), QDialogButtonBox::RejectRole)->setDefault(true);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    return buttons;
}

QPushButton* addButton(QDialogButtonBox& buttons, const QString& title) {
    auto* button = buttons.addButton(title, QDialogButtonBox::ActionRole);
    button->setAutoDefault(false);
    return button;
}

QString changedLines(const std::vector<review::LineChange>& changes) {
    QString lines;
    for (const review::LineChange& change : changes) {
        const bool goes = change.kind == review::LineChange::Kind::Goes;
        lines += QLatin1String(goes ? "- " : "+ ") + shown(change.line) + QLatin1Char('\n');
    }
    return lines;
}

} // namespace frontend
