#pragma once

#include "frontends/qt/Binding.h"

#include <QAccessible>
#include <QLabel>
#include <QResizeEvent>

namespace frontend {

/// A line of text that is elided when there is no room, with the whole text in its tool tip.
class ElidedLabel : public QLabel {
  public:
    /// With `isNews`, a screen reader reads out a new text at once, wherever the focus is.
    explicit ElidedLabel(bool isNews = false) : isNews_(isNews) { setTextFormat(Qt::PlainText); }

    /// The size of the whole text.
    [[nodiscard]] QSize sizeHint() const override {
        const QSize elided = QLabel::sizeHint();
        return {fontMetrics().horizontalAdvance(whole_) + 1, elided.height()}; // which has been rounded
    }

    [[nodiscard]] QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

    void setWhole(const QString& text) {
        whole_ = text;
        setToolTip(asItIs(text));
        setAccessibleName(text);
        updateGeometry();
        elide();
        if (isNews_) {
            // Some screen readers do not announce alerts, but read out what becomes visible.
            for (const QAccessible::Event kind : {QAccessible::Alert, QAccessible::ObjectShow}) {
                QAccessibleEvent news(this, kind);
                QAccessible::updateAccessibility(&news);
            }
        }
    }

    [[nodiscard]] const QString& whole() const { return whole_; }

    [[nodiscard]] bool isNews() const { return isNews_; }

  protected:
    void resizeEvent(QResizeEvent* event) override {
        QLabel::resizeEvent(event);
        elide();
    }

  private:
    void elide() { setText(fontMetrics().elidedText(whole_, Qt::ElideRight, width())); }

    QString whole_;
    bool isNews_;
};

} // namespace frontend
