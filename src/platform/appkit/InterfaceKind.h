#pragma once

namespace platform {

/// The kinds of elements in an interface file, in the order of the table that describes them
/// (InterfaceTable.h).
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
    TabView,
    Tab,

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
    TextView
};

} // namespace platform
