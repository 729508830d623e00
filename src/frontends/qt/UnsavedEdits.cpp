#include "frontends/qt/UnsavedEdits.h"

#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/ShareAddress.h"
#include "frontends/qt/WindowNames.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "review/Operations.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace frontend {

namespace {

/// True for a control that only determines what is shown, and is not saved.
bool choosesView(std::string_view operation) {
    static constexpr std::array<std::string_view, 5> operations = {
        "updateUsersGroupsList:", "updateGroupsList:", "refreshGroupList:", "changeAFSPropsTabView:",
        "changeSMBPropsTabView:"};
    return std::ranges::find(operations, operation) != operations.end();
}

/// True for a control with a content that a user has entered and that would be saved.
bool isUnsaved(const platform::InterfaceNode& node) {
    const auto* control = modelOf<NSControl>(node);
    return control != nullptr && control->isEdited() && !choosesView(control->action().operation);
}

bool hasEdits(const platform::InterfaceNode& page) {
    bool isEdited = false;
    platform::visitNodes(
        page, [&isEdited](const platform::InterfaceNode& each) { isEdited = isEdited || isUnsaved(each); });
    return isEdited;
}

/// Returns the main window's pages, including the drawer, with their titles.
std::vector<std::pair<const platform::InterfaceNode*, std::string>>
pagesOf(const platform::Interface& interface) {
    std::vector<std::pair<const platform::InterfaceNode*, std::string>> pages;
    platform::visitNodes(interface.root(), [&pages](const platform::InterfaceNode& each) {
        if (each.kind == platform::InterfaceKind::Drawer) {
            pages.emplace_back(&each, NSLocalizedString("Share"));
        } else if (each.element != nullptr && each.element->name() == pagesOfWindow) {
            for (const auto& page : each.children) {
                pages.emplace_back(page.get(), page->attribute("label"));
            }
        }
    });
    return pages;
}

/// True for an operation that shows again what is saved, or nothing for a new row.
bool dropsEdits(std::string_view operation) {
    static constexpr std::array<std::string_view, 5> operations = {
        "updateShareTextFields:", "updateUserTextFields:", "updateGroupTextFields:", "refreshAFSProperties:",
        "revertSMBProperties:"};
    return std::ranges::find(operations, operation) != operations.end();
}

void forgetEdits(const platform::InterfaceNode& page, bool isReplaced) {
    platform::visitNodes(page, [isReplaced](const platform::InterfaceNode& each) {
        auto* control = modelOf<NSControl>(each);
        if (control != nullptr && (isReplaced || !control->isEdited())) {
            control->forgetEdit();
        }
    });
}

bool sends(const platform::InterfaceNode& page, const std::string& operation) {
    bool isThere = false;
    platform::visitNodes(page, [&](const platform::InterfaceNode& each) {
        const auto* control = modelOf<NSControl>(each);
        isThere = isThere || (control != nullptr && control->action().operation == operation);
    });
    return isThere;
}

bool isMeant(const platform::InterfaceNode& page, UnsavedEdits::Pages which) {
    using enum UnsavedEdits::Pages;
    return which == All || (which != SMBSettings && sends(page, "createShare:")) ||
           (which != ShareEditor && sends(page, "updateSMBProperties:"));
}

/// Returns a function that makes the control show again what it shows now; null for one without a content.
/// That is a user's edit again, if it is one now.
std::function<void()> contentOf(NSControl& control) {
    if (auto* field = dynamic_cast<NSTextField*>(&control); field != nullptr && field->isEditable()) {
        return [field, text = field->stringValue()] { field->setStringValue(text); };
    }
    if (auto* menu = dynamic_cast<NSPopUpButton*>(&control)) {
        return [menu, item = menu->titleOfSelectedItem()] { menu->selectItemWithTitle(item.value_or("")); };
    }
    if (auto* box = dynamic_cast<NSButton*>(&control);
        box != nullptr && box->kind() == NSButtonKind::CheckBox) {
        return [box, state = box->state()] { box->setState(state); };
    }
    auto* matrix = dynamic_cast<NSMatrix*>(&control);
    if (matrix == nullptr) {
        return nullptr;
    }
    std::vector<std::array<int, 3>> cells; // the row, the column and the state of each edited cell
    for (int row = 0; row < matrix->numberOfRows(); ++row) {
        for (int column = 0; column < matrix->numberOfColumns(); ++column) {
            if (matrix->isEditedAt(row, column)) {
                cells.push_back({row, column, matrix->stateAt(row, column)});
            }
        }
    }
    return [matrix, cells = std::move(cells)] {
        for (const auto& [row, column, state] : cells) {
            matrix->setStateAt(row, column, state);
        }
    };
}

} // namespace

UnsavedEdits::UnsavedEdits(WindowActions& actions, RefreshQueue& queue) : actions_(actions) {
    eventEnded_ = queue.eventEnded.connect([this] { forgetReplaced(); });
    used_ = actions.used.connect([this](const std::string& operation) {
        if (dropsEdits(operation)) {
            forgetWhereSent(operation);
        }
    });
}

/// Not within an event: controls are emptied and filled again below an edit that stays.
void UnsavedEdits::forgetReplaced() {
    for (const auto& [page, title] : pagesOf(actions_.interface())) {
        forgetEdits(*page, showsOtherRow(*page) && !putBack_.contains(page));
    }
    putBack_.clear();
}

bool UnsavedEdits::showsOtherRow(const platform::InterfaceNode& page) {
    std::string name;
    platform::visitNodes(page, [&](const platform::InterfaceNode& each) {
        if (auto* table = actions_.find<NSTableView>(each.attribute("namesRow"))) {
            const auto* node = actions_.interface().findNode(table->name());
            name = valueOf(*table, node->attribute("nameColumn").c_str(), table->selectedRow());
        }
    });
    return std::exchange(shownRows_[&page], name) != name;
}

void UnsavedEdits::forgetWhereSent(const std::string& operation) {
    for (const auto& [page, title] : pagesOf(actions_.interface())) {
        if (sends(*page, operation)) {
            forgetEdits(*page, true);
        }
    }
}

void UnsavedEdits::noteSaved(const std::string& operation) {
    const review::WritingOperation* writing = review::findWritingOperation(operation);
    if (writing != nullptr && writing->savesPage) {
        forgetWhereSent(operation);
    }
}

void UnsavedEdits::forget(Pages which) {
    for (const auto& [page, title] : pagesOf(actions_.interface())) {
        if (isMeant(*page, which)) {
            forgetEdits(*page, true);
        }
    }
}

std::string UnsavedEdits::loss(Pages which) const {
    std::string titles;
    for (const auto& [page, title] : pagesOf(actions_.interface())) {
        if (isMeant(*page, which) && hasEdits(*page)) {
            titles += (titles.empty() ? "" : ", ") + title;
        }
    }
    return titles.empty()
               ? titles
               : stringWithFormat(NSLocalizedString("Unsaved changes on these pages will be lost: %@."),
                                  titles);
}

std::function<void()> UnsavedEdits::keep(Pages which) {
    std::vector<std::pair<NSControl*, std::function<void()>>> contents;
    std::set<const platform::InterfaceNode*> kept;
    for (const auto& [page, title] : pagesOf(actions_.interface())) {
        if (!isMeant(*page, which) || !hasEdits(*page)) {
            continue;
        }
        kept.insert(page);
        // An editor is filled from its row, and from the folder that was chosen: all of it belongs to the
        // edit.
        const bool isOfSettings =
            sends(*page, "updateSMBProperties:") || sends(*page, "updateAFSProperties:");
        platform::visitNodes(*page, [&](const platform::InterfaceNode& each) {
            auto* control = modelOf<NSControl>(each);
            if (control == nullptr || choosesView(control->action().operation) ||
                (isOfSettings && !isUnsaved(each))) {
                return;
            }
            if (auto content = contentOf(*control)) {
                contents.emplace_back(control, std::move(content));
            }
        });
    }
    return [this, kept = std::move(kept), contents = std::move(contents)] {
        for (const auto& [control, show] : contents) {
            show();
            control->sendAction(); // which enables others or changes a button's title
        }
        putBack_.insert(kept.begin(), kept.end());
    };
}

bool UnsavedEdits::mayBeLost(Pages which) const {
    const std::string text = loss(which);
    return text.empty() ||
           NSRunAlertPanel(NSLocalizedString("Unsaved Changes"), "%@", NSLocalizedString("Cancel"),
                           NSLocalizedString("Go On"), std::nullopt, text) == NSAlertAlternateReturn;
}

} // namespace frontend
