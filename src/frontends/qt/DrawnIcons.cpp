#include "frontends/qt/DrawnIcons.h"

#include "frontends/qt/Inks.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace frontend {

namespace {

/// An icon that is drawn on whatever is there: Qt's own pixmap of an icon has an undefined ground.
class DrawnIcon : public QIconEngine {
  public:
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return drawn;
    }
};

class MarkEngine : public DrawnIcon {
  public:
    MarkEngine(Mark mark, QPalette::ColorRole ground) : mark_(mark), ground_(ground) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override {
        const QPalette palette = QGuiApplication::palette();
        const bool isSelected = mode == QIcon::Selected;
        const QColor ground = palette.color(isSelected ? QPalette::Highlight : ground_);
        const QColor ink = isSelected               ? palette.color(QPalette::HighlightedText)
                           : mark_ == Mark::Warning ? inkOn(Ink::Warning, palette, ground_)
                                                    : inkOn(Ink::Note, palette, ground_);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        // Draw in a square of 16 by 16 units, scaled to the available room.
        constexpr double side = 16;
        const double scale = std::min(rect.width(), rect.height()) / side;
        painter->translate(rect.center().x() + 1 - side * scale / 2,
                           rect.center().y() + 1 - side * scale / 2);
        painter->scale(scale, scale);
        painter->setPen(Qt::NoPen);
        painter->setBrush(ink);
        painter->drawPath(shape());
        painter->setBrush(ground);
        drawLetter(*painter);
        painter->restore();
    }

    [[nodiscard]] QIconEngine* clone() const override { return new MarkEngine(*this); }

  private:
    [[nodiscard]] QPainterPath shape() const {
        QPainterPath path;
        if (mark_ == Mark::Warning) {
            path.addPolygon(QPolygonF({{8, 0.8}, {15.6, 14.8}, {0.4, 14.8}}));
            path.closeSubpath();
        } else {
            path.addEllipse(QRectF(0.8, 0.8, 14.4, 14.4));
        }
        return path;
    }

    /// Draws "!" or "i".
    void drawLetter(QPainter& painter) const {
        const bool isWarning = mark_ == Mark::Warning;
        painter.drawRoundedRect(QRectF(7.1, isWarning ? 5.2 : 6.8, 1.8, 5.2), 0.8, 0.8);
        painter.drawEllipse(QPointF(8, isWarning ? 12.4 : 4.4), 1.1, 1.1);
    }

    Mark mark_;
    QPalette::ColorRole ground_;
};

class MoreEngine : public DrawnIcon {
  public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override {
        const QPalette palette = QGuiApplication::palette();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const int height = rect.height() / 2;
        const int width = height / 2;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(palette.color(group, QPalette::WindowText), 1.0 + height / 8.0));
        for (const int left : {-width, 1}) {
            const QPoint tip = rect.center() + QPoint(left + width, 0);
            painter->drawPolyline(QPolygon({tip + QPoint(-width, -width), tip, tip + QPoint(-width, width)}));
        }
        painter->restore();
    }

    [[nodiscard]] QIconEngine* clone() const override { return new MoreEngine; }
};

} // namespace

QIcon markIcon(Mark mark, QPalette::ColorRole ground) {
    return QIcon(new MarkEngine(mark, ground)); // the icon owns it
}

QIcon moreIcon() {
    return QIcon(new MoreEngine);
}

} // namespace frontend
