#include "frontends/qt/ElidedLabel.h"
#include "frontends/qt/FieldHints.h"
#include "frontends/qt/Inks.h"
#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/WidgetBuilder.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/ShownWhen.h"

namespace frontend {

using platform::InterfaceNode;

namespace {

void useStyle(QLabel& label, const std::string& style) {
    QFont font = label.font();
    if (style == "heading") {
        font.setPointSizeF(font.pointSizeF() * 1.15);
        font.setBold(true);
    } else if (style == "note") {
        font.setPointSizeF(font.pointSizeF() * 0.9);
        useInk(label, Ink::Note);
        label.setWordWrap(true);
        QSizePolicy besideControls(QSizePolicy::Ignored, QSizePolicy::Preferred); // controls set the width
        besideControls.setHeightForWidth(true);
        label.setSizePolicy(besideControls);
    } else if (style == "warning") {
        useInk(label, Ink::Warning);
        label.setWordWrap(true);
    } else {
        label.setContentsMargins(0, 1, 0, 1); // some fonts draw dots of capitals above their height
    }
    label.setFont(font);
}

/// Shows the label only if it has a parent: without one it would become a window.
void setVisibleInParent(QLabel& label, bool isVisible) {
    if (!isVisible || label.parentWidget() != nullptr) {
        label.setVisible(isVisible);
    }
}

/// Makes the label show the field's text. A note or a warning disappears when the text is empty.
void showTextOf(NSTextField& field, QLabel& label, const std::string& style, RefreshQueue& queue) {
    if (style == "warning") {
        label.setTextInteractionFlags(Qt::TextSelectableByMouse); // may be quoted in a report
    }
    const bool goesWhenEmpty = style == "note" || style == "warning";
    auto* line = dynamic_cast<ElidedLabel*>(&label);
    new Binding(&label, queue, field.changed, [&label, &field, line, goesWhenEmpty] {
        if (line != nullptr) {
            line->setWhole(shown(field.stringValue()));
        } else {
            label.setText(shown(field.stringValue()));
        }
        if (goesWhenEmpty) {
            setVisibleInParent(label, !field.stringValue().empty());
        }
    });
}

/// Makes the field name the selected row of the table, also when the row has moved.
void nameRowOf(NSTableView& table, NSTextField& field, QLabel& label, const platform::Interface& interface,
               RefreshQueue& queue) {
    const std::string& column = interface.findNode(table.name())->attribute("nameColumn");
    if (const NSTableColumn* names = table.tableColumnWithIdentifier(column)) {
        new Binding(&label, queue, table.changed, [&table, &field, names] {
            field.setStringValue(table.objectValue(*names, table.selectedRow()));
        });
    }
}

/// Makes the label visible only while the condition in its attribute `when` holds.
void showWhen(QLabel& label, const InterfaceNode& node, const WindowActions& actions, RefreshQueue& queue) {
    const auto follow = [&label, &node, &actions] { setVisibleInParent(label, isShown(node, actions)); };
    for (const auto& side : platform::parseShownWhen(node.attribute("when"))) {
        for (const platform::ControlHas& each : side) {
            new Binding(&label, queue, actions.interface().find(each.control)->changed, follow);
        }
    }
}

} // namespace

QWidget* WidgetBuilder::makeLabel(const InterfaceNode& node) {
    auto* field = modelOf<NSTextField>(node);
    // A name of any length must not make the window wider.
    const bool isLine = field != nullptr && node.attribute("style").empty();
    QLabel* label = isLine ? new ElidedLabel : new QLabel;
    // Only the label of a field has a mnemonic, so only there "&" has to be escaped.
    label->setText(node.attribute("for").empty() ? shown(node.attribute("text"))
                                                 : title(node.attribute("text")));
    label->setTextFormat(Qt::PlainText); // its text may come from a file or an account's name
    useStyle(*label, node.attribute("style"));
    if (field != nullptr) {
        showTextOf(*field, *label, node.attribute("style"), queue_);
    }
    if (auto* table = actions_.find<NSTableView>(node.attribute("rowOf"));
        table != nullptr && field != nullptr) {
        nameRowOf(*table, *field, *label, actions_.interface(), queue_);
    }
    if (auto* about = actions_.find<NSTextField>(node.attribute("about"))) {
        new Binding(label, queue_, about->changed,
                    [this, label, &node] { label->setText(shown(actions_.textAbout(node, "text"))); });
    }
    showWhen(*label, node, actions_, queue_);
    if (const std::string& control = node.attribute("for"); !control.empty()) {
        if (const auto found = named_.find(control); found != named_.end()) {
            makeBuddies(*label, *found->second);
        } else {
            buddies_.emplace(control, label);
        }
    }
    return label;
}

} // namespace frontend
