#include "frontends/qt/Inks.h"

#include <QApplication>
#include <QEvent>
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

} // namespace frontend
