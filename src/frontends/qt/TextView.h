#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSTextView.h"

#include <QTextEdit>
#include <QTimer>

/// The widget of a text view: styled text to read. However often the model scrolls, it follows once a frame.
class TextView : public QTextEdit {
    Q_OBJECT

  public:
    TextView(NSTextView& view, RefreshQueue& queue);

  private:
    void load();

    NSTextView& view_;
    QTimer frame_;
    platform::Connection scrolled_;
};
