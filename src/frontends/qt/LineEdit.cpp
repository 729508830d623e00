#include "frontends/qt/LineEdit.h"

#include "frontends/qt/WindowDrop.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSBundle.h"

#include <QDropEvent>
#include <QMimeData>

#include <algorithm>
#include <utility>

namespace frontend {

LineEdit::LineEdit(NSTextField& field, RefreshQueue& queue) : field_(field), queue_(queue) {
    if (field.isSecure()) {
        setEchoMode(QLineEdit::Password);
        setInputMethodHints(Qt::ImhHiddenText | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    }
    // Qt signals the new text before the new caret, so `before_` still holds the old caret in userEdited.
    const auto remember = [this] {
        if (!loading_ && !holdsCaret_) {
            before_ = caretNow();
        }
    };
    connect(this, &QLineEdit::cursorPositionChanged, this, remember);
    connect(this, &QLineEdit::selectionChanged, this, remember);
    connect(this, &QLineEdit::textEdited, this, &LineEdit::userEdited);
    connect(this, &QLineEdit::returnPressed, this, &LineEdit::endEditing);
    connect(this, &QLineEdit::textChanged, this, [this] { setProblem({}); });
    new Binding(this, queue, field.changed, [this] { load(); });
}

void LineEdit::setProblem(const QString& why) {
    problem_ = why;
    tellProblem();
}

void LineEdit::setHint(const QString& hint) {
    hint_ = hint;
    tellProblem();
}

void LineEdit::tellProblem() {
    const QString& said = problem_.isEmpty() ? hint_ : problem_;
    if (said != accessibleDescription()) {
        setAccessibleDescription(said);
        Q_EMIT problemChanged(said);
    }
}

void LineEdit::setUnlimited(const std::string& value) {
    unlimited_ = value;
    load();
}

LineEdit::Caret LineEdit::caretNow() const {
    return {.position = cursorPosition(),
            .selectionStart = selectionStart(),
            .selectionLength = static_cast<int>(selectedText().size())};
}

void LineEdit::place(const Caret& caret) {
    loading_ = true;
    if (caret.selectionStart < 0) {
        setCursorPosition(caret.position);               // also clears the selection
    } else if (caret.position == caret.selectionStart) { // selected from right to left
        setSelection(caret.selectionStart + caret.selectionLength, -caret.selectionLength);
    } else {
        setSelection(caret.selectionStart, caret.selectionLength);
    }
    loading_ = false;
    before_ = caretNow();
}

void LineEdit::restore(const QString& text, const Caret& caret) {
    loading_ = true;
    setText(text);
    place(caret);
}

void LineEdit::load() {
    setEnabled(field_.isEnabled());
    const bool isUnlimited =
        !hasFocus() && !isDraggedOn_ && !unlimited_.empty() && field_.stringValue() == unlimited_;
    const QString now = shown(isUnlimited ? NSLocalizedString("no limit") : field_.stringValue());
    accepted_ = now;
    if (now != text()) {
        noteEntered();
        restore(now, {.position = static_cast<int>(now.size())});
        if (!hasFocus()) {
            home(false); // the beginning of a long text says more than its end
        }
    }
}

bool LineEdit::propose(const QString& text, int caret, const Caret& before) {
    const NSRange selection = {.location = static_cast<std::size_t>(
                                   before.selectionStart < 0 ? before.position : before.selectionStart),
                               .length = static_cast<std::size_t>(before.selectionLength)};
    bool taken = false;
    NSApp().dispatch(
        [&] { taken = field_.proposeEdit(text.toStdString(), static_cast<std::size_t>(caret), selection); });
    isEdited_ = isEdited_ || taken;
    return taken;
}

void LineEdit::userEdited(const QString& text) {
    const Caret before = before_;
    const Caret after = caretNow();
    loading_ = true; // an alert that the edit causes must not change `before_`
    (void)propose(text, after.position, before);
    loading_ = false;
    // The field decides: it may have refused the text, or changed it.
    const QString now = shown(field_.stringValue());
    if (now == text) {
        accepted_ = text;
        if (field_.isSecure()) {
            restore(text, after); // setting the text discards the undo history, and with it old passwords
        }
        before_ = caretNow();
    } else if (now == accepted_) {
        restore(now, before);
    } else { // accepted without characters that no field can hold; what follows the caret is unchanged
        restore(now, {.position = std::max(0, after.position - static_cast<int>(text.size() - now.size()))});
        accepted_ = now;
    }
    queue_.flush();
}

void LineEdit::endEditing() {
    queue_.runUserEvent([this] { field_.endEditing(); });
    const std::string before = entered_;
    noteEntered();
    if (std::exchange(isEdited_, false) && before != entered_) {
        Q_EMIT left();
    }
}

void LineEdit::focusInEvent(QFocusEvent* event) {
    noteEntered();
    load(); // show the text that can be edited
    QLineEdit::focusInEvent(event);
}

void LineEdit::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) { // the field's own menu is part of editing it
        endEditing();
        load();
    }
}

void LineEdit::inputMethodEvent(QInputMethodEvent* event) {
    // For input methods Qt signals the new caret first.
    holdsCaret_ = true;
    QLineEdit::inputMethodEvent(event);
    holdsCaret_ = false;
    before_ = caretNow();
}

void LineEdit::dragEnterEvent(QDragEnterEvent* event) {
    if (!draggedFolder(*event->mimeData()).isEmpty()) {
        event->ignore(); // lets the page around the field handle it
        return;
    }
    isDraggedOn_ = true;
    load();                // the drop goes into the text that can be edited
    dragged_ = caretNow(); // during the drag Qt moves the caret to where the text would go
    QLineEdit::dragEnterEvent(event);
}

void LineEdit::dragLeaveEvent(QDragLeaveEvent* event) {
    QLineEdit::dragLeaveEvent(event);
    place(dragged_);
    endDrag();
}

void LineEdit::dropEvent(QDropEvent* event) {
    // Qt would turn a move into two edits, a removal and an insertion. Propose the drop as one edit instead.
    const QString dropped = event->mimeData()->text();
    QString proposed = text();
    int position = cursorPositionAt(event->position().toPoint());
    if (event->source() == this && event->dropAction() == Qt::MoveAction && dragged_.selectionStart >= 0) {
        proposed.remove(dragged_.selectionStart, dragged_.selectionLength);
        if (position > dragged_.selectionStart) {
            position = std::max(dragged_.selectionStart, position - dragged_.selectionLength);
        }
    }
    proposed.insert(position, dropped);
    int caret = position + static_cast<int>(dropped.size());
    // For the field, a drop is an insertion without a selection.
    if (dropped.isEmpty() || !propose(proposed, caret, {.position = position})) {
        event->ignore();
        place(dragged_);
        endDrag();
        return;
    }
    event->acceptProposedAction();
    const QString taken = shown(field_.stringValue());
    caret = std::max(position, caret - static_cast<int>(proposed.size() - taken.size()));
    restore(taken, {.position = caret, .selectionStart = position, .selectionLength = caret - position});
    queue_.flush();
    if (!hasFocus()) {
        endEditing(); // the focus will not be lost
    }
    endDrag();
}

void LineEdit::noteEntered() {
    if (!field_.isSecure()) { // a password's copy would never be wiped
        entered_ = field_.stringValue();
    }
}

void LineEdit::endDrag() {
    isDraggedOn_ = false;
    load();
}

} // namespace frontend
