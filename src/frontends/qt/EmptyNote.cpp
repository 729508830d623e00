#include "frontends/qt/EmptyNote.h"

#include "frontends/qt/NodeAttributes.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int spacing = 12;

} // namespace

EmptyNote::EmptyNote(const platform::InterfaceNode& node, QAbstractScrollArea& view, WindowActions& actions,
                     RefreshQueue& queue)
    : QWidget(&view), view_(view) {
    setObjectName(shown(node.element->name() + "Empty"));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(spacing);
    auto* text = new QLabel(shown(node.attribute("empty")));
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignCenter);
    layout->addStretch();
    layout->addWidget(text);
    if (const platform::InterfaceNode* begin = actions.interface().findNode(node.attribute("begin"))) {
        auto* button = new QPushButton(title(node.attribute("beginTitle")));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [&actions, begin] { actions.use(*begin); });
        layout->addWidget(button, 0, Qt::AlignHCenter);
    }
    layout->addStretch();
    view.viewport()->installEventFilter(this);
    auto* table = modelOf<NSTableView>(node);
    new Binding(this, queue, table->reloaded, [this, table] { setVisible(table->numberOfRows() == 0); });
    place();
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
