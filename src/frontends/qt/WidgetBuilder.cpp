#include "frontends/qt/WidgetBuilder.h"

#include "frontends/qt/Buttons.h"
#include "frontends/qt/Drawer.h"
#include "frontends/qt/EmptyNote.h"
#include "frontends/qt/FieldHints.h"
#include "frontends/qt/FieldProblems.h"
#include "frontends/qt/FilterField.h"
#include "frontends/qt/LineEdit.h"
#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/PopUp.h"
#include "frontends/qt/TabView.h"
#include "frontends/qt/TableView.h"
#include "frontends/qt/TextView.h"
#include "frontends/qt/WidgetKinds.h"
#include "platform/appkit/NSButton.h"

#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace frontend {

using Kind = platform::InterfaceKind;
using platform::InterfaceNode;

namespace {

constexpr int pageMargin = 16;
constexpr int boxMargin = 12;
constexpr int spacing = 8;
constexpr int partSpacing = 20;
constexpr int indentStep = 20;

/// True when the node takes the remaining room beside it, or, if `vertical`, below it.
bool takesRoom(const InterfaceNode& node, bool vertical) {
    const Room room = widgetKind(node).room;
    if (number(node, "stretch") > 0 || room == Room::All || (!vertical && room == Room::Beside)) {
        return true;
    }
    return std::any_of(node.children.begin(), node.children.end(), [&node, vertical](const auto& child) {
        const bool along = node.kind == (vertical ? Kind::Column : Kind::Row);
        return (along && child->kind == Kind::Spacer) ||
               (child->kind != Kind::Spacer && takesRoom(*child, vertical));
    });
}

/// True when the node only lays out its children.
bool isLayout(const InterfaceNode& node) {
    return isOneOf(node, {Kind::Column, Kind::Row, Kind::Grid});
}

/// True for a row that stays visible below the scrolling contents.
bool isFoot(const InterfaceNode& node) {
    return isYes(node, "foot");
}

/// True when the node only fills a cell of a grid.
bool isNothing(const InterfaceNode& node) {
    return node.kind == Kind::Label && node.attributes.empty();
}

} // namespace

QWidget* WidgetBuilder::make(const InterfaceNode& node) {
    QWidget* widget = makeKind(node);
    finish(*widget, node);
    return widget;
}

QWidget* WidgetBuilder::makePage(const InterfaceNode& node) {
    QWidget* page = make(node);
    if (page->layout() != nullptr && isLayout(node)) {
        page->layout()->setContentsMargins(pageMargin, pageMargin, pageMargin, pageMargin);
        return page;
    }
    auto* framed = new QWidget;
    auto* layout = new QVBoxLayout(framed);
    layout->setContentsMargins(pageMargin, pageMargin, pageMargin, pageMargin);
    layout->addWidget(page);
    return framed;
}

QWidget* WidgetBuilder::makeDrawer(const InterfaceNode& node, int windowWidth) {
    constexpr int usualWidth = 340;
    const int width = number(node, "width");
    const int leastBeside = windowWidth * 5 / 6; // a page is still usable at this width
    auto makeParts = [this, &node]() -> Drawer::Parts {
        const InterfaceNode& contents = *node.children.at(0);
        const auto foot =
            std::ranges::find_if(contents.children, [](const auto& child) { return isFoot(*child); });
        return {makePage(contents), foot == contents.children.end() ? nullptr : makePage(**foot)};
    };
    auto* drawer = new Drawer(*modelOf<NSDrawer>(node), std::move(makeParts), width > 0 ? width : usualWidth,
                              leastBeside, animated_, queue_);
    finish(*drawer, node);
    return drawer;
}

QWidget* WidgetBuilder::makeKind(const InterfaceNode& node) {
    const auto makeWidget = widgetKind(node).make;
    if (makeWidget == nullptr) {
        throw std::logic_error("no widget of its own stands for this kind of element");
    }
    return (this->*makeWidget)(node);
}

QWidget* WidgetBuilder::makeSeparator(const InterfaceNode& /*node*/) {
    auto* line = new QFrame;
    line->setFrameStyle(static_cast<int>(QFrame::HLine) | static_cast<int>(QFrame::Sunken));
    return line;
}

QWidget* WidgetBuilder::makeButton(const InterfaceNode& node) {
    return frontend::makeButton(node, actions_, queue_);
}

QWidget* WidgetBuilder::makePopUp(const InterfaceNode& node) {
    return new PopUp(*modelOf<NSPopUpButton>(node), isYes(node, "typeAhead"), queue_);
}

QWidget* WidgetBuilder::makeMatrix(const InterfaceNode& node) {
    return new Matrix(*modelOf<NSMatrix>(node), queue_);
}

QWidget* WidgetBuilder::makeTable(const InterfaceNode& node) {
    auto* table = modelOf<NSTableView>(node);
    auto* view = new TableView(*table, node.attribute("nameColumn"), queue_);
    visitNodes(actions_.interface().root(), [table, view](const InterfaceNode& each) {
        if (const auto* field = modelOf<NSTextField>(each);
            field != nullptr && each.attribute("namesRow") == table->name() && !table->name().empty()) {
            view->setNameField(*field);
        }
    });
    QObject::connect(view, &TableView::editAsked, view,
                     [this, table] { actions_.useButtonOf(table->name(), "edit"); });
    QObject::connect(view, &TableView::deletionAsked, view,
                     [this, table] { actions_.useButtonOf(table->name(), "delete"); });
    QObject::connect(view, &TableView::menuAsked, view,
                     [this, table](QMenu& menu) { actions_.addButtonsOf(table->name(), menu); });
    new Binding(view, queue_, table->changed, [this, table] {
        actions_.showDefaultsWithoutRow(*table);
        actions_.showNothingForMissingNumbers(*table);
    });
    if (!node.attribute("empty").empty()) {
        new EmptyNote(node, *view, actions_, queue_); // a child of the view
    }
    view->setObjectName(shown(table->name()));
    actions_.tableMade.emit(*view);
    return view;
}

QWidget* WidgetBuilder::makeBox(const InterfaceNode& node) {
    auto* box = new QGroupBox(title(node.attribute("title")));
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(boxMargin, boxMargin, boxMargin, boxMargin);
    fillBox(*layout, node);
    return box;
}

QWidget* WidgetBuilder::makeTextField(const InterfaceNode& node) {
    auto* edit = new LineEdit(*modelOf<NSTextField>(node), queue_);
    edit->setPlaceholderText(shown(node.attribute("placeholder")));
    edit->setNamesFolder(isYes(node, "folder"));
    if (const int width = number(node, "maxWidth"); width > 0) {
        edit->setMaximumWidth(width);
    }
    if (const std::string& unlimited = node.attribute("unlimited"); !unlimited.empty()) {
        edit->setUnlimited(unlimited);
    }
    auto* hint = new Binding(edit, queue_, modelOf<NSTextField>(node)->changed,
                             [this, edit, &node] { edit->setHint(shown(fieldHint(node, actions_))); });
    if (auto* table = actions_.find<NSTableView>(node.attribute("namesRow"))) {
        new Binding(edit, queue_, table->changed, [hint] { hint->markDirty(); });
    }
    if (!node.attribute("chooses").empty()) {
        QObject::connect(edit, &LineEdit::left, edit, [this, &node] { actions_.fieldWasLeft(node); });
    }
    return edit;
}

QWidget* WidgetBuilder::makeTextView(const InterfaceNode& node) {
    auto* view = new TextView(*modelOf<NSTextView>(node), queue_);
    if (const int height = number(node, "height"); height > 0) {
        view->setMinimumHeight(height);
    }
    return view;
}

QWidget* WidgetBuilder::makeTabView(const InterfaceNode& node) {
    std::vector<TabView::MakePage> pages;
    for (const auto& tab : node.children) {
        const bool framed = !modelOf<NSTabView>(node)->showsTabs();
        const InterfaceNode& inside = *tab->children.at(0);
        pages.push_back([this, &inside, framed] {
            QWidget* page = makePage(inside);
            if (!framed) { // directly in the window: align it with its surroundings
                page->layout()->setContentsMargins(0, boxMargin, 0, 0);
            }
            return page;
        });
    }
    return new TabView(*modelOf<NSTabView>(node), std::move(pages), queue_);
}

QWidget* WidgetBuilder::makeLayoutWidget(const InterfaceNode& node) {
    auto* widget = new QWidget;
    QLayout* layout = nullptr;
    if (node.kind == Kind::Grid) {
        auto* grid = new QGridLayout(widget);
        fillGrid(*grid, node);
        layout = grid;
    } else {
        auto* box = new QBoxLayout(node.kind == Kind::Row ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom,
                                   widget);
        fillBox(*box, node);
        layout = box;
    }
    layout->setContentsMargins(0, 0, 0, 0);
    return widget;
}

void WidgetBuilder::fillBox(QBoxLayout& layout, const InterfaceNode& node) {
    // Columns side by side are parts of a page, and need more space between them than the controls of a row.
    const bool holdsParts =
        node.kind == Kind::Row && std::any_of(node.children.begin(), node.children.end(),
                                              [](const auto& child) { return child->kind == Kind::Column; });
    layout.setSpacing(holdsParts ? partSpacing : spacing);
    bool roomIsTaken = false;
    const bool vertical = node.kind != Kind::Row;
    LineEdit* field = nullptr; // the one before, in a row with the unit of its number behind it
    for (const auto& child : node.children) {
        if (isFoot(*child)) {
            continue; // made with the drawer
        }
        addTo(layout, *child);
        QWidget* widget = layout.itemAt(layout.count() - 1)->widget(); // null for a spacer
        if (auto* unit = qobject_cast<QLabel*>(widget); unit != nullptr && field != nullptr && !vertical) {
            showEnabledLike(*unit, *field);
        }
        field = qobject_cast<LineEdit*>(widget);
        roomIsTaken = roomIsTaken || child->kind == Kind::Spacer || takesRoom(*child, vertical);
    }
    if (!roomIsTaken) {
        layout.addStretch(); // keeps the children together at the start
    }
}

void WidgetBuilder::addTo(QBoxLayout& layout, const InterfaceNode& node) {
    const int stretch = number(node, "stretch");
    if (node.kind == Kind::Spacer) {
        layout.addStretch(std::max(stretch, 1));
        return;
    }
    QWidget* widget = make(node);
    if (auto* table = qobject_cast<TableView*>(widget)) {
        auto* filter = new FilterField(*table);
        filter->setObjectName(table->objectName() + QLatin1String("Filter"));
        layout.addWidget(filter);
    }
    const bool isRow = layout.direction() == QBoxLayout::LeftToRight;
    // A control keeps its own width in a column: a button as wide as the window looks wrong.
    const bool keepsWidth = !isRow && !takesRoom(node, false) && widgetKind(node).room < Room::Offered;
    const bool isIndented = number(node, "indent") > 0;
    if (!isRow && isIndented) {
        auto* line = new QHBoxLayout;
        line->addSpacing(number(node, "indent") * indentStep);
        line->addWidget(widget);
        line->addStretch();
        layout.addLayout(line, stretch);
    } else {
        layout.addWidget(widget, stretch, keepsWidth ? Qt::AlignLeft : Qt::Alignment());
    }
}

void WidgetBuilder::fillGrid(QGridLayout& layout, const InterfaceNode& node) {
    const int columns = std::max(1, number(node, "columns"));
    layout.setHorizontalSpacing(spacing);
    layout.setVerticalSpacing(spacing);
    std::vector<bool> wide(static_cast<std::size_t>(columns), false);
    for (std::size_t index = 0; index < node.children.size(); ++index) {
        const InterfaceNode& child = *node.children[index];
        const int cell = static_cast<int>(index);
        const int column = cell % columns;
        const bool isTitle =
            child.kind == Kind::Label && child.attribute("style").empty() && child.element == nullptr;
        const bool besideHigh =
            isTitle && index + 1 < node.children.size() && isHigh(*node.children[index + 1]);
        Qt::Alignment alignment;
        if (isTitle) {
            alignment = Qt::AlignRight | (besideHigh ? Qt::AlignTop : Qt::AlignVCenter);
        } else if (!takesRoom(child, false) && widgetKind(child).room < Room::OfferedInGrid) {
            alignment = Qt::AlignLeft | Qt::AlignVCenter;
        }
        if (child.kind != Kind::Spacer && !isNothing(child)) {
            QWidget* widget = make(child);
            if (besideHigh) { // align it with the first line
                const int line = QCheckBox(QStringLiteral("X")).sizeHint().height();
                widget->setContentsMargins(0, (line - widget->fontMetrics().height()) / 2, 0, 0);
            }
            layout.addWidget(widget, 2 * (cell / columns), column, alignment);
            if (QLabel* note = makeProblemNote(*widget)) { // in the row below, empty while the note is hidden
                layout.addWidget(note, 2 * (cell / columns) + 1, column);
            }
        }
        if (!isTitle && takesRoom(child, false)) {
            wide[static_cast<std::size_t>(column)] = true;
        }
    }
    const bool anyWide = std::find(wide.begin(), wide.end(), true) != wide.end();
    for (int column = 0; column < columns; ++column) {
        layout.setColumnStretch(column, wide[static_cast<std::size_t>(column)] ? 1 : 0);
    }
    layout.setColumnStretch(columns, anyWide ? 0 : 1);
}

} // namespace frontend
