#pragma once

#include <QLabel>
#include <QResizeEvent>

/// A line of text that ends in dots where it has no room, and says all of it in its tool tip.
class ElidedLabel : public QLabel {
  public:
    ElidedLabel() {
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }

    void setWhole(const QString& text) {
        whole_ = text;
        setToolTip(text.toHtmlEscaped());
        setAccessibleName(text);
        elide();
    }

    [[nodiscard]] const QString& whole() const { return whole_; }

  protected:
    void resizeEvent(QResizeEvent* event) override {
        QLabel::resizeEvent(event);
        elide();
    }

  private:
    void elide() { setText(fontMetrics().elidedText(whole_, Qt::ElideRight, width())); }

    QString whole_;
};
