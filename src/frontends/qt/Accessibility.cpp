#include "frontends/qt/Accessibility.h"

#include "frontends/qt/Buttons.h"
#include "frontends/qt/Drawer.h"
#include "frontends/qt/ElidedLabel.h"
#include "frontends/qt/PopUp.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>

namespace frontend {

namespace {

/// Qt reports a pop-up's choice as its name, and expects the real name in a label, which not every pop-up
/// has.
class AccessiblePopUp : public QAccessibleWidget {
  public:
    explicit AccessiblePopUp(PopUp& popUp)
        : QAccessibleWidget(&popUp, QAccessible::ComboBox), popUp_(popUp) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? popUp_.currentText() : QAccessibleWidget::text(kind);
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = popUp_.isOpen();
        return state;
    }

    [[nodiscard]] int childCount() const override { return 1; }

    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(popUp_.list()) : nullptr;
    }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        return child->object() == popUp_.list() ? 0 : -1;
    }

    [[nodiscard]] QStringList actionNames() const override {
        return QStringList(showMenuAction()) + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override {
        if (name != showMenuAction()) {
            QAccessibleWidget::doAction(name);
        } else if (popUp_.isOpen()) {
            popUp_.hidePopup();
        } else {
            popUp_.showPopup();
        }
    }

  private:
    PopUp& popUp_;
};

/// Qt calls this for each class of an object, the most derived one first. Null leaves the object to Qt.
QAccessibleInterface* interfaceOf(const QString& className, QObject* object) {
    if (qobject_cast<Drawer*>(object) != nullptr || qobject_cast<Matrix*>(object) != nullptr) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Grouping);
    }
    if (auto* popUp = qobject_cast<PopUp*>(object)) {
        return new AccessiblePopUp(*popUp);
    }
    if (const auto* line = dynamic_cast<ElidedLabel*>(object); line != nullptr && line->isNews()) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::AlertMessage);
    }
    // Plain widgets are the sheets and panels of an interface file.
    auto* widget = qobject_cast<QWidget*>(object);
    if (className == QLatin1String("QWidget") && widget != nullptr && widget->isWindow() &&
        widget->windowType() == Qt::Dialog) {
        return new QAccessibleWidget(widget, QAccessible::Dialog);
    }
    return nullptr;
}

} // namespace

Accessibility::Accessibility() {
    QAccessible::installFactory(interfaceOf);
}

Accessibility::~Accessibility() {
    QAccessible::removeFactory(interfaceOf);
}

} // namespace frontend
