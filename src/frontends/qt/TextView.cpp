#include "frontends/qt/TextView.h"

#include <QScrollBar>
#include <QTextBlockFormat>
#include <QTextCursor>

#include <chrono>

namespace frontend {

namespace {

constexpr std::chrono::milliseconds frameTime{16};

Qt::Alignment alignmentOf(platform::TextAlignment alignment) {
    switch (alignment) {
    case platform::TextAlignment::Center:
        return Qt::AlignHCenter;
    case platform::TextAlignment::Right:
        return Qt::AlignRight;
    case platform::TextAlignment::Left:
        break;
    }
    return Qt::AlignLeft;
}

} // namespace

TextView::TextView(NSTextView& view, RefreshQueue& queue) : view_(view) {
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // it scrolls by itself, and with the wheel and keys
    setTextInteractionFlags(Qt::TextBrowserInteraction);
    document()->setDocumentMargin(12);
    frame_.setSingleShot(true);
    frame_.setInterval(frameTime);
    connect(&frame_, &QTimer::timeout, this,
            [this] { verticalScrollBar()->setValue(static_cast<int>(view_.scrollPosition())); });
    scrolled_ = view.scrolled.connect([this] {
        if (!frame_.isActive()) {
            frame_.start();
        }
    });
    new Binding(this, queue, view.changed, [this] { load(); });
}

void TextView::load() {
    clear();
    QTextCursor cursor(document());
    for (const platform::TextRun& run : view_.text()) {
        QTextCharFormat characters;
        characters.setFontWeight(run.bold ? QFont::Bold : QFont::Normal);
        characters.setFontItalic(run.italic);
        // A point in the credits is a point of the window: one pixel before scaling.
        characters.setProperty(QTextFormat::FontPixelSize, static_cast<int>(run.size));
        QTextBlockFormat paragraph;
        paragraph.setAlignment(alignmentOf(run.alignment));
        cursor.mergeBlockFormat(paragraph);
        cursor.insertText(shown(run.text), characters);
        cursor.mergeBlockFormat(paragraph);
    }
    moveCursor(QTextCursor::Start); // inserting the text has moved the widget's cursor to the end
    verticalScrollBar()->setValue(static_cast<int>(view_.scrollPosition()));
}

} // namespace frontend
