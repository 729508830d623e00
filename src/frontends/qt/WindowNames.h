#pragma once

namespace frontend {

// What the window knows of resources/MainMenu.xml.

// The names of controls.
inline constexpr const char* pagesOfWindow = "mainTabView";
inline constexpr const char* shareTable = "normalTableView";
inline constexpr const char* userTable = "userTableView";
inline constexpr const char* groupTable = "groupTableView";
inline constexpr const char* memberTable = "groupUsersTableView"; ///< the users that can be added to a group

/// The pages of the main window, in their order.
enum WindowPage { sharesPage, usersPage, groupsPage, afpPage, smbPage };

} // namespace frontend
