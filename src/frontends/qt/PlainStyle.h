#pragma once

#include <QProxyStyle>

/// Qt's own style with more air: wider buttons, and table cells whose texts stand clear of their edges and
/// below their titles. The menu that keys have reached stands out before it is opened. On a black desktop,
/// where that style's own edges cannot be seen, fields and boxes have an outline. Used where the desktop
/// brings no style of its own.
class PlainStyle : public QProxyStyle {
  public:
    PlainStyle();

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

/// Installs the style, unless the desktop or the user chose one.
void usePlainStyle();
