#include "frontends/qt/Inks.h"

#include <QApplication>
#include <QEvent>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace frontend {

namespace {

/// The contrast that inks are chosen for. It is higher because frames and alternating rows vary the ground.
constexpr double wantedContrast = leastContrast + 0.5;

constexpr QColor warningOnLight(0xa0, 0x3c, 0x00);
constexpr QColor warningOnDark(0xff, 0xb0, 0x6a);
constexpr double noteShare = 0.65; // the share of the text's colour; the rest is the ground's

double luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QColor mixed(const QColor& colour, const QColor& other, double share) {
    const auto part = [share](float first, float second) {
        return static_cast<float>(first * share + second * (1 - share));
    };
    return QColor::fromRgbF(part(colour.redF(), other.redF()), part(colour.greenF(), other.greenF()),
                            part(colour.blueF(), other.blueF()));
}

/// Returns the first colour between `from` and `to` with that contrast to the ground; `to` if there is none.
QColor readable(const QColor& from, const QColor& to, const QColor& ground, double wanted = wantedContrast) {
    constexpr int steps = 20;
    for (int step = 0; step < steps; ++step) {
        const QColor colour = mixed(to, from, static_cast<double>(step) / steps);
        if (contrast(colour, ground) >= wanted) {
            return colour;
        }
    }
    return to;
}

/// Returns black or white, whichever is readable on the ground.
QColor extremeOn(const QColor& ground) {
    return contrast(Qt::white, ground) > contrast(Qt::black, ground) ? Qt::white : Qt::black;
}

/// Updates a widget's ink when the colours of the desktop or of its surroundings change.
class InkKeeper : public QObject {
  public:
    explicit InkKeeper(QWidget& widget) : QObject(&widget), widget_(widget) {
        widget.installEventFilter(this);
    }

    void use(std::optional<Ink> ink) {
        ink_ = ink;
        apply();
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange) {
            apply();
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    void apply() {
        const QWidget* around = widget_.parentWidget();
        const QPalette natural = around == nullptr ? QApplication::palette(&widget_) : around->palette();
        if (!ink_) {
            widget_.setPalette(QPalette());
            return;
        }
        const QColor colour = inkOn(*ink_, natural);
        if (colour != widget_.palette().color(QPalette::WindowText)) {
            QPalette own;
            own.setColor(QPalette::WindowText, colour);
            widget_.setPalette(own);
        }
    }

    QWidget& widget_;
    std::optional<Ink> ink_;
};

class MarkEngine : public QIconEngine {
  public:
    MarkEngine(Mark mark, QPalette::ColorRole ground) : mark_(mark), ground_(ground) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override {
        const QPalette palette = QApplication::palette();
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

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return drawn;
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

} // namespace

double contrast(const QColor& first, const QColor& second) {
    const auto [darker, lighter] = std::minmax({luminance(first), luminance(second)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor inkOn(Ink ink, const QPalette& palette, QPalette::ColorRole groundRole) {
    const QColor ground = palette.color(groundRole);
    if (ink == Ink::Note) {
        const QColor text =
            palette.color(groundRole == QPalette::Base ? QPalette::Text : QPalette::WindowText);
        return readable(mixed(text, ground, noteShare), text, ground);
    }
    const QColor& warning =
        contrast(warningOnLight, ground) > contrast(warningOnDark, ground) ? warningOnLight : warningOnDark;
    return readable(warning, extremeOn(ground), ground);
}

void useInk(QWidget& widget, std::optional<Ink> ink) {
    static constexpr const char* name = "inkKeeper";
    auto* keeper = static_cast<InkKeeper*>(widget.findChild<QObject*>(name, Qt::FindDirectChildrenOnly));
    if (keeper == nullptr) {
        keeper = new InkKeeper(widget);
        keeper->setObjectName(name);
    }
    keeper->use(ink);
}

QColor placeholderOn(const QPalette& palette) {
    const QColor ground = palette.color(QPalette::Base);
    const QColor ink = palette.color(QPalette::PlaceholderText); // Qt's own is translucent
    return contrast(mixed(ink, ground, ink.alphaF()), ground) < leastContrast
               ? inkOn(Ink::Note, palette, QPalette::Base)
               : ink;
}

QColor edgeOn(const QPalette& palette) {
    const QColor ground = palette.color(QPalette::Window);
    return readable(ground, palette.color(QPalette::WindowText), ground, leastEdgeContrast);
}

QColor highlightUnder(const QPalette& palette) {
    const QColor text = palette.color(QPalette::HighlightedText);
    return readable(palette.color(QPalette::Highlight), extremeOn(text), text, leastContrast);
}

QColor accentOn(const QPalette& palette) {
    return readable(palette.color(QPalette::Highlight), palette.color(QPalette::WindowText),
                    palette.color(QPalette::Window), leastEdgeContrast);
}

QColor loweredWindow(const QPalette& palette) {
    constexpr int shade = 103; // percent
    return palette.color(QPalette::Window).darker(shade);
}

QIcon markIcon(Mark mark, QPalette::ColorRole ground) {
    return QIcon(new MarkEngine(mark, ground));
}

} // namespace frontend
