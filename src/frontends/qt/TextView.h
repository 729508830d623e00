#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSTextView.h"

#include <QTextEdit>
#include <QTimer>

namespace frontend {

/// The widget for a text view: read-only styled text. However often the model scrolls, the widget follows
/// once per frame.
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

} // namespace frontend
