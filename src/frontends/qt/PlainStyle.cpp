#include "frontends/qt/PlainStyle.h"

#include "frontends/qt/Inks.h"
#include "frontends/qt/MoreIcon.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>
#include <QWidget>

#include <algorithm>

namespace {

constexpr const char* fusion = "fusion";
constexpr int cellMargin = 6;
constexpr int buttonAir = 16;
constexpr int fieldAir = 4;
constexpr int fieldInset = 3; ///< added to the style's margin, to align a field's text with a cell's
constexpr int menuInset = 2;
constexpr int rowPadding = 8; ///< the same as in tables

/// True for a button that is only a picture.
bool isFlat(const QStyleOption* option) {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    return button != nullptr && button->features.testFlag(QStyleOptionButton::Flat);
}

/// Returns the contrast of the style's outlines, which are darker than the window, to the window.
double contrastOfEdges(const QPalette& palette) {
    constexpr int outline = 140; // percent
    const QColor window = palette.color(QPalette::Window);
    return contrast(window.darker(outline), window);
}

/// True when the edges can hardly be told from the window. The limit is stricter for fields and boxes, of
/// which only the edges are visible, than for buttons.
bool edgesVanish(const QPalette& palette, bool isButton) {
    constexpr double leastOfFields = 1.5;
    constexpr double leastOfButtons = 1.1;
    return contrastOfEdges(palette) < (isButton ? leastOfButtons : leastOfFields);
}

void drawEdge(const QRect& rect, const QStyleOption& option, QPainter& painter) {
    constexpr double radius = 2;
    const QPalette& palette = option.palette;
    const QColor highlight = palette.color(QPalette::Highlight);
    const bool hasKeys = option.state.testFlag(QStyle::State_HasFocus);
    const bool isSeen = contrast(highlight, palette.color(QPalette::Window)) >= leastEdgeContrast;
    const QColor focused = isSeen ? highlight : palette.color(QPalette::WindowText);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(hasKeys ? focused : edgeOn(palette));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

/// True for the frame of something that is typed into or chosen from.
bool isField(QStyle::PrimitiveElement element) {
    return element == QStyle::PE_IndicatorCheckBox || element == QStyle::PE_FrameLineEdit ||
           element == QStyle::PE_Frame || element == QStyle::PE_FrameMenu;
}

} // namespace

PlainStyle::PlainStyle() : QProxyStyle(QString::fromLatin1(fusion)) {}

void PlainStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    // Not every desktop has a colour for placeholders.
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setCurrentColorGroup(group);
        palette.setColor(group, QPalette::PlaceholderText, placeholderOn(palette));
    }
    palette.setCurrentColorGroup(QPalette::Active);
}

QIcon PlainStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
    return icon == SP_ToolBarHorizontalExtensionButton ? moreIcon()
                                                       : QProxyStyle::standardIcon(icon, option, widget);
}

int PlainStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_HeaderMargin:
        return cellMargin;
    case PM_FocusFrameHMargin: // the margin beside a cell's text, minus one pixel
        return cellMargin - 1;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QRect PlainStyle::subElementRect(SubElement element, const QStyleOption* option,
                                 const QWidget* widget) const {
    const QRect rect = QProxyStyle::subElementRect(element, option, widget);
    return element == SE_LineEditContents ? rect.adjusted(fieldInset, 0, -fieldInset, 0) : rect;
}

QRect PlainStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                 const QWidget* widget) const {
    const QRect rect = QProxyStyle::subControlRect(control, option, part, widget);
    const bool isMirrored = option != nullptr && option->direction == Qt::RightToLeft;
    return control != CC_ComboBox || part != SC_ComboBoxEditField ? rect
           : isMirrored                                           ? rect.adjusted(0, 0, -menuInset, 0)
                                                                  : rect.adjusted(menuInset, 0, 0, 0);
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
    const auto* menu = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (element == CE_ComboBoxLabel && menu != nullptr) {
        QStyleOptionComboBox whole = *menu;
        const int room = subControlRect(CC_ComboBox, menu, SC_ComboBoxEditField, widget).width();
        whole.currentText = menu->fontMetrics.elidedText(menu->currentText, Qt::ElideRight, room);
        QProxyStyle::drawControl(element, &whole, painter, widget);
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void PlainStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox && edgesVanish(option->palette, true)) {
        drawEdge(option->rect, *option, *painter);
    }
}

QSize PlainStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const {
    QSize made = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton:
        made += isFlat(option) ? QSize() : QSize(buttonAir, fieldAir);
        break;
    case CT_LineEdit:
        made.rheight() += fieldAir;
        break;
    case CT_ComboBox:
        made += QSize(menuInset, fieldAir);
        break;
    case CT_ItemViewItem:
        made.setHeight(std::max(made.height(), option->fontMetrics.height() + rowPadding));
        break;
    default:
        break;
    }
    return made;
}

void PlainStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isButton = element == PE_PanelButtonCommand && !isFlat(option);
    // A list with the focus is shown by its edge, as the style itself does for a field.
    const bool hasKeys = element == PE_Frame && option->state.testFlag(State_HasFocus);
    if (hasKeys || ((isButton || isField(element)) && edgesVanish(option->palette, isButton))) {
        drawEdge(option->rect, *option, *painter);
    }
}

void usePlainStyle() {
    if (QApplication::style()->name() == QLatin1String(fusion)) {
        QApplication::setStyle(new PlainStyle); // the application takes ownership
    }
}
