#pragma once

#include "frontends/qt/Binding.h"

#include <QAccessible>
#include <QLabel>
#include <QResizeEvent>

/// A line of text that ends in dots where it has no room, and says all of it in its tool tip.
class ElidedLabel : public QLabel {
  public:
    /// `isNews`: a screen reader says a new text at once, wherever its reader is.
    explicit ElidedLabel(bool isNews = false) : isNews_(isNews) { setTextFormat(Qt::PlainText); }

    /// All of the text, where there is room.
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
            // Where alerts are not passed on, one that comes into sight is what is read out.
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
