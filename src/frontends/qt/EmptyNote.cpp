#include "frontends/qt/EmptyNote.h"

#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/TableView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/foundation/NSString.h"
#include "review/DirectoryState.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace frontend {

namespace {

constexpr int spacing = 12;

} // namespace

EmptyNote::EmptyNote(const platform::InterfaceNode& node, TableView& view, WindowActions& actions,
                     RefreshQueue& queue)
    : QWidget(&view), node_(node), view_(view) {
    setObjectName(shown(node.element->name() + "Empty"));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(spacing);
    text_ = new QLabel;
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    text_->setAlignment(Qt::AlignCenter);
    layout->addStretch();
    layout->addWidget(text_);
    if (const platform::InterfaceNode* begin = actions.interface().findNode(node.attribute("begin"))) {
        button_ = new QPushButton(title(node.attribute("beginTitle")));
        button_->setAutoDefault(false);
        connect(button_, &QPushButton::clicked, this, [&actions, begin] { actions.use(*begin); });
        layout->addWidget(button_, 0, Qt::AlignHCenter);
    }
    layout->addStretch();
    view.viewport()->installEventFilter(this);
    new Binding(this, queue, modelOf<NSTableView>(node)->reloaded, [this] { follow(); });
    connect(view.model(), &QAbstractItemModel::modelReset, this, [this] { follow(); });
    place();
}

void EmptyNote::follow() {
    const auto& table = *modelOf<NSTableView>(node_);
    const bool isFilled = table.numberOfRows() > 0;
    const bool isUnread = !isFilled && !review::directoryProblem().empty();
    text_->setText(isFilled
                       ? shown(stringWithFormat(NSLocalizedString("Nothing matches “%@”."), view_.filter()))
                   : isUnread ? localized("The list could not be read.")
                              : shown(node_.attribute("empty")));
    if (button_ != nullptr) {
        button_->setVisible(!isFilled && !isUnread);
    }
    setVisible(table.isLoaded() && view_.model()->rowCount() == 0 && (!isFilled || !view_.filter().empty()));
}

void EmptyNote::place() {
    setGeometry(view_.viewport()->geometry());
}

bool EmptyNote::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        place();
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace frontend
