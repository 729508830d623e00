#include "frontends/qt/PlainStyle.h"

#include "frontends/qt/Inks.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>
#include <QWidget>

namespace {

constexpr const char* fusion = "fusion";
constexpr int cellMargin = 6;
constexpr int buttonAir = 16;
constexpr int fieldAir = 4;

/// A button that is a picture and nothing else.
bool isFlat(const QStyleOption* option) {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    return button != nullptr && button->features.testFlag(QStyleOptionButton::Flat);
}

/// Whether the style's outlines, which are darker than the window, look like the window itself.
bool edgesVanish(const QPalette& palette) {
    constexpr int outline = 140; // percent
    constexpr double leastEdge = 1.1;
    const QColor window = palette.color(QPalette::Window);
    return contrast(window.darker(outline), window) < leastEdge;
}

} // namespace

PlainStyle::PlainStyle() : QProxyStyle(QString::fromLatin1(fusion)) {}

int PlainStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_HeaderMargin:
        return cellMargin;
    case PM_FocusFrameHMargin: // what stands beside a cell's text, less one
        return cellMargin - 1;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

void PlainStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuBarItem && item != nullptr && widget != nullptr && widget->hasFocus() &&
        item->state.testFlag(State_Selected)) {
        QStyleOptionMenuItem reached = *item;
        reached.state |= State_Sunken;
        QProxyStyle::drawControl(element, &reached, painter, widget);
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

QSize PlainStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const {
    QSize made = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton:
        made += isFlat(option) ? QSize() : QSize(buttonAir, fieldAir);
        break;
    case CT_LineEdit:
    case CT_ComboBox:
        made.rheight() += fieldAir;
        break;
    default:
        break;
    }
    return made;
}

void PlainStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool hasEdge =
        element == PE_IndicatorCheckBox || element == PE_FrameLineEdit || element == PE_Frame;
    if (hasEdge && edgesVanish(option->palette)) {
        painter->save();
        painter->setPen(inkOn(Ink::Note, option->palette));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
    }
}

void usePlainStyle() {
    if (QApplication::style()->name() == QLatin1String(fusion)) {
        QApplication::setStyle(new PlainStyle); // the application owns it
    }
}
