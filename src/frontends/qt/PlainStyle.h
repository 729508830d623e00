#pragma once

#include <QProxyStyle>

namespace frontend {

/// How much higher a row of a list is than its text, in pixels.
inline constexpr int rowPadding = 8;

/// Qt's own style with more space: wider buttons, higher rows, and margins around the texts of fields and
/// cells. A menu title that was reached with the keyboard is highlighted before the menu opens. That style's
/// own edges are hardly visible, so buttons, fields and boxes get an outline, which is coloured for the
/// default button and for whatever has the focus. The selected tab has a coloured line, and a pressed button
/// that stays down is tinted. Used when the desktop has no style of its own.
class PlainStyle : public QProxyStyle {
  public:
    PlainStyle();

    using QProxyStyle::polish;
    void polish(QPalette& palette) override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

/// Installs the style, unless the desktop or the user chose one.
void usePlainStyle();

} // namespace frontend
