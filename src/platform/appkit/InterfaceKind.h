#pragma once

namespace platform {

/// The kinds of elements in an interface file. One table describes them all (InterfaceKinds.cpp). Front-ends
/// switch over them without a default, so that a front-end that misses a kind does not compile.
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
