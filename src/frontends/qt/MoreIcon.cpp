#include "frontends/qt/MoreIcon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

namespace frontend {

namespace {

class MoreIconEngine : public QIconEngine {
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

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new MoreIconEngine; }
};

} // namespace

QIcon moreIcon() {
    return QIcon(new MoreIconEngine); // the icon owns it
}

} // namespace frontend
