#include "frontends/qt/UnsavedEdits.h"

#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/WindowNames.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
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

/// Returns the control's content that a user has entered and that would be saved; empty when there is none.
std::string editOf(const platform::InterfaceNode& node) {
    const auto* control = modelOf<NSControl>(node);
    if (control == nullptr || choosesView(control->action().operation)) {
        return {};
    }
    const auto edit = control->edit();
    return edit ? "=" + *edit : "";
}

using Edits = std::map<const platform::Element*, std::string>;

Edits editsBelow(const platform::InterfaceNode& page) {
    Edits edits;
    platform::visitNodes(page, [&edits](const platform::InterfaceNode& each) {
        if (std::string edit = editOf(each); !edit.empty()) {
            edits.emplace(each.element.get(), std::move(edit));
        }
    });
    return edits;
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

bool sends(const platform::InterfaceNode& page, const std::string& operation) {
    bool isThere = false;
    platform::visitNodes(page, [&](const platform::InterfaceNode& each) {
        const auto* control = modelOf<NSControl>(each);
        isThere = isThere || (control != nullptr && control->action().operation == operation);
    });
    return isThere;
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
}

/// When another row is loaded into an editor, forgets what was saved there.
void UnsavedEdits::forgetReplaced() {
    std::erase_if(saved_, [](const auto& saved) {
        const auto* control = dynamic_cast<const NSControl*>(saved.first);
        return control == nullptr || !control->edit();
    });
}

void UnsavedEdits::noteSaved(const std::string& operation) {
    const review::WritingOperation* writing = review::findWritingOperation(operation);
    if (writing == nullptr || !writing->savesPage) {
        return;
    }
    for (const auto& [page, title] : pagesOf(actions_.interface())) {
        if (sends(*page, operation)) {
            for (auto& [control, edit] : editsBelow(*page)) {
                saved_[control] = edit;
            }
        }
    }
}

bool UnsavedEdits::isSaved(const platform::Element* control, const std::string& edit) const {
    const auto saved = saved_.find(control);
    return saved != saved_.end() && saved->second == edit;
}

bool UnsavedEdits::isUnsaved(const platform::InterfaceNode& page, Pages which) const {
    const bool isMeant = which == Pages::All ||
                         (which != Pages::SMBSettings && sends(page, "createShare:")) ||
                         (which != Pages::ShareEditor && sends(page, "updateSMBProperties:"));
    if (!isMeant) {
        return false;
    }
    return std::ranges::any_of(editsBelow(page),
                               [this](const auto& edit) { return !isSaved(edit.first, edit.second); });
}

std::string UnsavedEdits::loss(Pages which) const {
    std::string titles;
    for (const auto& [page, title] : pagesOf(actions_.interface())) {
        if (isUnsaved(*page, which)) {
            titles += (titles.empty() ? "" : ", ") + title;
        }
    }
    return titles.empty()
               ? titles
               : stringWithFormat(NSLocalizedString("Unsaved changes on these pages will be lost: %@."),
                                  titles);
}

std::function<void()> UnsavedEdits::keep(Pages which) const {
    std::vector<std::pair<NSControl*, std::function<void()>>> contents;
    for (const auto& [page, title] : pagesOf(actions_.interface())) {
        if (!isUnsaved(*page, which)) {
            continue;
        }
        // An editor is filled from its row, and from the folder that was chosen: all of it belongs to the
        // edit.
        const bool isOfSettings =
            sends(*page, "updateSMBProperties:") || sends(*page, "updateAFSProperties:");
        platform::visitNodes(*page, [&](const platform::InterfaceNode& each) {
            auto* control = modelOf<NSControl>(each);
            const std::string edit = editOf(each);
            if (control == nullptr || choosesView(control->action().operation) ||
                (isOfSettings && (edit.empty() || isSaved(each.element.get(), edit)))) {
                return;
            }
            if (auto content = contentOf(*control)) {
                contents.emplace_back(control, std::move(content));
            }
        });
    }
    return [contents = std::move(contents)] {
        for (const auto& [control, show] : contents) {
            show();
            control->sendAction(); // which enables others or changes a button's title
        }
    };
}

bool UnsavedEdits::mayBeLost(Pages which) const {
    const std::string text = loss(which);
    return text.empty() ||
           NSRunAlertPanel(NSLocalizedString("Unsaved Changes"), "%@", NSLocalizedString("Cancel"),
                           NSLocalizedString("Go On"), std::nullopt, text) == NSAlertAlternateReturn;
}

} // namespace frontend
