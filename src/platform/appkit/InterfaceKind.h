#pragma once

namespace platform {

/// The kinds of elements of an interface file. What each is stands in one table (InterfaceKinds.cpp). A
/// front-end switches over all of them without a default, so that it does not compile when it lacks one.
enum class InterfaceKind {
    Interface,
    MenuBar,
    Menu,
    MenuItem,
    MenuSeparator,
    Window,
    Sheet,
    Panel,
    Drawer,
    Column,
    Row,
    Grid,
    Box,
    Spacer,
    Separator,
    Label,
    TextField,
    SecureField,
    Button,
    CheckBox,
    PopUp,
    PopUpItem,
    Matrix,
    Cell,
    TableView,
    TableColumn,
    TextView,
    TabView,
    Tab
};

} // namespace platform
