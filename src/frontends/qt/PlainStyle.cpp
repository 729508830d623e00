#include "frontends/qt/PlainStyle.h"

#include "frontends/qt/DrawnIcons.h"
#include "frontends/qt/Inks.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QPainter>
#include <QStyleOption>
#include <QWidget>

#include <algorithm>

namespace frontend {

namespace {

constexpr const char* fusion = "fusion";
constexpr int cellMargin = 6;
constexpr int buttonAir = 16;
constexpr int fieldAir = 4;
constexpr int fieldInset = 3; ///< added to the style's margin, to align a field's text with a cell's
constexpr int menuInset = 2;

/// True for a button that is only a picture.
bool isFlat(const QStyleOption* option) {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    return button != nullptr && button->features.testFlag(QStyleOptionButton::Flat);
}

/// True for the frame around a page, for which the style's own outline is enough where it can be seen.
bool isQuietFrame(QStyle::PrimitiveElement element, const QPalette& palette, const QWidget* widget) {
    constexpr double least = 1.5;
    constexpr int outline = 140; // percent: the style's own outlines are darker than the window
    const QColor window = palette.color(QPalette::Window);
    return element == QStyle::PE_Frame && qobject_cast<const QAbstractScrollArea*>(widget) == nullptr &&
           contrast(window.darker(outline), window) >= least;
}

/// True for the button that Return presses.
bool isDefault(const QStyleOption* option) {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    return button != nullptr && button->features.testFlag(QStyleOptionButton::DefaultButton);
}

/// Draws the outline of a control, and a tint over it if it is on.
void drawEdge(const QStyleOption& option, QPainter& painter, bool isOn) {
    constexpr double radius = 2;
    constexpr float strength = 0.3F;
    const QPalette& palette = option.palette;
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    const bool standsOut =
        isEnabled && (isOn || isDefault(&option) || option.state.testFlag(QStyle::State_HasFocus));
    const QColor accent = accentOn(palette);
    QColor tint = accent;
    tint.setAlphaF(strength);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(standsOut ? accent : edgeOn(palette));
    painter.setBrush(isOn ? QBrush(tint) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

/// Draws the line that tells the selected tab from the others: their grounds are much alike.
void drawTabLine(const QStyleOptionTab& tab, QPainter& painter) {
    constexpr int thickness = 3;
    painter.fillRect(QRect(tab.rect.left() + 1, tab.rect.top(), tab.rect.width() - 2, thickness),
                     accentOn(tab.palette));
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
    // Not every desktop has a colour for placeholders, and on some the selected row can hardly be read.
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setCurrentColorGroup(group);
        palette.setColor(group, QPalette::PlaceholderText, placeholderOn(palette));
        palette.setColor(group, QPalette::Highlight, highlightUnder(palette));
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
    return control == CC_ComboBox && part == SC_ComboBoxEditField ? rect.adjusted(menuInset, 0, 0, 0) : rect;
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
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    if (element == CE_TabBarTabShape && tab != nullptr && tab->state.testFlag(State_Selected)) {
        drawTabLine(*tab, *painter);
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
    if (isButton || (isField(element) && !isQuietFrame(element, option->palette, widget))) {
        drawEdge(*option, *painter, isButton && option->state.testFlag(State_On));
    }
}

void usePlainStyle() {
    if (QApplication::style()->name() == QLatin1String(fusion)) {
        QApplication::setStyle(new PlainStyle); // the application takes ownership
    }
}

} // namespace frontend
