#pragma once

#include <QProxyStyle>

/// Qt's own style with more air: wider buttons, rows that stand apart, and texts that stand clear of the
/// edges of their fields and cells. The menu that keys have reached stands out before it is opened. On a dark
/// desktop, where that style's own edges can hardly be seen, fields and boxes have an outline, and on a black
/// one buttons, too. Used where the desktop brings no style of its own.
class PlainStyle : public QProxyStyle {
  public:
    PlainStyle();

    using QProxyStyle::polish;
    void polish(QPalette& palette) override;
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
