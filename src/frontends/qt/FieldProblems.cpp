#include "frontends/qt/FieldProblems.h"

#include "frontends/qt/Inks.h"
#include "frontends/qt/LineEdit.h"
#include "frontends/qt/NodeAttributes.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTabView.h"

#include <QAccessible>

#include <algorithm>

namespace frontend {

using platform::InterfaceNode;

namespace {

bool holds(const InterfaceNode& tree, const platform::Element* element) {
    if (tree.element.get() == element) {
        return true;
    }
    return std::any_of(tree.children.begin(), tree.children.end(),
                       [element](const auto& child) { return holds(*child, element); });
}

/// Returns the pop-up with exactly these items; null when there is none.
NSPopUpButton* findPopUpOf(const InterfaceNode& tree, const std::vector<std::string>& titles) {
    auto* popUp = modelOf<NSPopUpButton>(tree);
    if (popUp != nullptr && popUp->itemTitles() == titles) {
        return popUp;
    }
    for (const auto& child : tree.children) {
        if (NSPopUpButton* found = findPopUpOf(*child, titles)) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

QLabel* makeProblemNote(QWidget& widget) {
    auto* edit = qobject_cast<LineEdit*>(&widget);
    edit = edit == nullptr ? widget.findChild<LineEdit*>() : edit;
    if (edit == nullptr) {
        return nullptr;
    }
    auto* note = new QLabel;
    note->setTextFormat(Qt::PlainText);
    note->setWordWrap(true);
    note->setTextInteractionFlags(Qt::TextSelectableByMouse);
    useInk(*note, Ink::Warning);
    note->hide();
    QObject::connect(edit, &LineEdit::problemChanged, note, [note](const QString& why) {
        note->setText(why);
        note->setVisible(!why.isEmpty());
        if (!why.isEmpty()) {
            QAccessibleEvent alert(note, QAccessible::Alert);
            QAccessible::updateAccessibility(&alert);
        }
    });
    return note;
}

void showPageOf(const std::string& control, const platform::Interface& interface, RefreshQueue& queue) {
    const platform::Element* element = interface.find(control);
    const InterfaceNode* node = element == nullptr ? nullptr : &interface.root();
    while (node != nullptr && node->element.get() != element) {
        const auto next = std::find_if(node->children.begin(), node->children.end(),
                                       [element](const auto& child) { return holds(*child, element); });
        auto* pages = modelOf<NSTabView>(*node);
        if (pages != nullptr && next != node->children.end()) {
            const int page = static_cast<int>(next - node->children.begin());
            auto* popUp = pages->showsTabs() ? nullptr : findPopUpOf(interface.root(), pages->labels());
            if (popUp != nullptr && pages->indexOfSelectedTabViewItem() != page) {
                queue.runUserEvent([popUp, page] { popUp->performSelect(page); });
            }
        }
        node = next == node->children.end() ? nullptr : next->get();
    }
}

} // namespace frontend
