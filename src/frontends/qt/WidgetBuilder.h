#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"
#include "platform/appkit/Interface.h"

#include <QLabel>

#include <map>
#include <string>

class QGridLayout;
class QBoxLayout;

namespace frontend {

/// Makes the widgets of one window from the nodes of an interface file. It lives as long as the window,
/// because the pages of tab views are made later.
class WidgetBuilder {
  public:
    /// With `animated`, drawers slide. `actions` and `queue` must outlive this object.
    WidgetBuilder(WindowActions& actions, RefreshQueue& queue, bool animated)
        : actions_(actions), queue_(queue), animated_(animated) {}

    /// Makes the widget for a layout node (column, row, grid, box) or for a control. The caller owns it.
    [[nodiscard]] QWidget* make(const platform::InterfaceNode& node);
    /// Makes a layout node into a page with margins.
    [[nodiscard]] QWidget* makePage(const platform::InterfaceNode& node);
    /// Makes the drawer's widget, for a window that was designed for that width.
    [[nodiscard]] QWidget* makeDrawer(const platform::InterfaceNode& node, int windowWidth);

  private:
    friend struct WidgetKinds; // names the function that makes each kind

    [[nodiscard]] QWidget* makeKind(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeBox(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeLabel(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeTable(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeTabView(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeTextField(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeTextView(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeSeparator(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeButton(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makePopUp(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeMatrix(const platform::InterfaceNode& node);
    [[nodiscard]] QWidget* makeLayoutWidget(const platform::InterfaceNode& node);
    void fillBox(QBoxLayout& layout, const platform::InterfaceNode& node);
    void fillGrid(QGridLayout& layout, const platform::InterfaceNode& node);
    void addTo(QBoxLayout& layout, const platform::InterfaceNode& node);
    void finish(QWidget& widget, const platform::InterfaceNode& node);
    static void makeBuddies(QLabel& label, QWidget& widget);
    static void showEnabledLike(QLabel& label, QWidget& control);

    WindowActions& actions_;
    RefreshQueue& queue_;
    bool animated_;
    std::map<std::string, QWidget*, std::less<>> named_;
    std::multimap<std::string, QLabel*, std::less<>>
        buddies_; ///< labels whose control is not made yet, by its name
};

} // namespace frontend
