#pragma once

#include <QProxyStyle>

/// Qt's own style with more space: wider buttons, higher rows, and margins around the texts of fields and
/// cells. A menu title that was reached with the keyboard is highlighted before the menu opens, and a list
/// with the focus has a coloured edge. With dark desktop colours, where that style's own edges are hardly
/// visible, fields and boxes get an outline, and with black ones buttons, too. Used when the desktop has no
/// style of its own.
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
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

/// Installs the style, unless the desktop or the user chose one.
void usePlainStyle();
