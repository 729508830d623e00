// The window as a screen reader sees it.

#include "support/EveryWindowFixture.h"

#include <QAccessible>

namespace {

class ScreenReader : public EveryWindow {};

/// Calls `see` with everything in the accessibility tree that a user can work with.
void walk(QAccessibleInterface& each, const std::function<void(QAccessibleInterface&)>& see) {
    const QAccessible::State state = each.state();
    if (state.invisible && !state.offscreen) {
        return;
    }
    see(each);
    const QAccessible::Role role = each.role();
    if (role == QAccessible::Table || role == QAccessible::Tree || role == QAccessible::ScrollBar ||
        role == QAccessible::ComboBox || role == QAccessible::List) {
        return; // their parts are named after their contents
    }
    for (int child = 0; child < each.childCount(); ++child) {
        if (auto* inner = each.child(child)) {
            walk(*inner, see);
        }
    }
}

TEST_F(ScreenReader, FindsANameForEveryControlAndTheRoleOfTheSpecialOnes) {
    addShare("Docs", "/no/such/folder");
    addUser("alice", "501");
    openAll();
    clickRow("normalTableView", 0);
    std::map<std::string, QAccessible::Role> roles;
    std::map<std::string, std::string> names;
    forEveryWindow([&](QWidget& shown, const std::string& where) {
        walk(*QAccessible::queryAccessibleInterface(&shown), [&](QAccessibleInterface& each) {
            const QString name = each.text(QAccessible::Name);
            const auto* actions = each.actionInterface();
            const bool isUsed =
                each.state().focusable || (actions != nullptr && !actions->actionNames().isEmpty());
            const std::string object =
                each.object() == nullptr ? std::string() : each.object()->objectName().toStdString();
            EXPECT_FALSE(isUsed && name.isEmpty() && each.role() != QAccessible::ScrollBar)
                << where << ": " << object << ", a "
                << (each.object() == nullptr ? "part" : each.object()->metaObject()->className());
            roles.emplace(object, each.role());
            names.emplace(object, name.toStdString());
        });
    });
    for (const auto& [object, role, name] :
         {std::tuple("lockButton", QAccessible::Button, "Lock"),
          {"normalTableView", QAccessible::Table, "Shares"},
          {"drawer", QAccessible::Grouping, "Share Editor"},
          {"ownerPrivs", QAccessible::ComboBox, "Owner may"},
          {"groupPrivs", QAccessible::ComboBox, "Group may"},
          {"everyonePrivs", QAccessible::ComboBox, "Everyone may"},
          {"passwordWindow", QAccessible::Dialog, "Password"},
          {"statusText", QAccessible::AlertMessage, ""}, // nothing has been done yet

          {"shareName", QAccessible::EditableText, "Name:"},
          {"normalTableViewFilter", QAccessible::EditableText, "Filter (Shares)"},
          {"idleDisconnectUsers", QAccessible::Grouping, "Applies to:"}}) {
        EXPECT_EQ(roles[object], role) << object;
        EXPECT_EQ(names[object], name) << object;
    }
    auto* table = QAccessible::queryAccessibleInterface(&widget<QTableView>("normalTableView"));
    EXPECT_EQ(table->tableInterface()->columnDescription(0), "Share");
    // The meaning of an icon is also said in words.
    const auto marked = widget<QTableView>("normalTableView").model()->index(0, 0);
    EXPECT_EQ(marked.data(Qt::AccessibleTextRole).toString(), "Docs (Warning)");
    EXPECT_TRUE(marked.data(Qt::AccessibleDescriptionRole).toString().contains("/no/such/folder"));
    EXPECT_EQ(widget<QWidget>("lockButton").accessibleDescription(), widget<QLabel>("authLabel").text());
}

} // namespace
