#include "frontends/qt/Mnemonics.h"
#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/WidgetBuilder.h"
#include "platform/appkit/NSTextField.h"

#include <QEvent>

namespace frontend {

// What a widget is called: by programs, by the label beside it and by a screen reader.

namespace {

/// Makes a label look disabled while the control that it is beside is.
class EnabledFollower : public QObject {
  public:
    EnabledFollower(QLabel& label, QWidget& control) : QObject(&label), label_(label), control_(control) {
        control.installEventFilter(this);
        label.setEnabled(control.isEnabled());
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::EnabledChange) {
            label_.setEnabled(control_.isEnabled());
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    QLabel& label_;
    QWidget& control_;
};

} // namespace

void WidgetBuilder::showEnabledLike(QLabel& label, QWidget& control) {
    new EnabledFollower(label, control); // a child of the label
}

void WidgetBuilder::makeBuddies(QLabel& label, QWidget& widget) {
    label.setBuddy(&widget);
    showEnabledLike(label, widget);
    if (widget.accessibleName().isEmpty()) {
        widget.setAccessibleName(plainTitle(label.text()));
    }
}

void WidgetBuilder::finish(QWidget& widget, const platform::InterfaceNode& node) {
    if (const std::string& spoken = node.attribute("spoken"); !spoken.empty()) {
        widget.setAccessibleName(shown(spoken));
    }
    if (auto* label = actions_.find<NSTextField>(node.attribute("describedBy"))) {
        new Binding(&widget, queue_, label->changed,
                    [&widget, label] { widget.setAccessibleDescription(shown(label->stringValue())); });
    }
    if (const std::string& tip = node.attribute("toolTip"); !tip.empty()) {
        widget.setToolTip(shown(tip));
    }
    if (const int width = number(node, "width"); width > 0 && node.kind != platform::InterfaceKind::Drawer) {
        widget.setMinimumWidth(width);
    }
    const std::string& name = node.element ? node.element->name() : node.attribute("name");
    if (name.empty()) {
        return;
    }
    widget.setObjectName(shown(name));
    named_[name] = &widget;
    for (auto [label, end] = buddies_.equal_range(name); label != end; ++label) {
        makeBuddies(*label->second, widget);
    }
    buddies_.erase(name);
}

} // namespace frontend
