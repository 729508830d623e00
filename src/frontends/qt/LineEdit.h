#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSTextField.h"

#include <QLineEdit>

namespace frontend {

/// A line edit for a text field's model. Every edit by the user (a key, a paste, a drop, an input method's
/// text, cut, undo) is first proposed to the field; when it is refused, text, caret and selection stay
/// unchanged. What the program puts into the field is shown without a check.
class LineEdit : public QLineEdit {
    Q_OBJECT

  public:
    LineEdit(NSTextField& field, RefreshQueue& queue);

    /// Tells the field that the user has finished editing. Called on Return, when the focus is lost, and
    /// before anything acts on the field while it keeps the focus (a menu's shortcut).
    void endEditing();

    /// Says why the present text cannot be used. Cleared when the text changes. A screen reader reads it with
    /// the field.
    void setProblem(const QString& why);

    /// Sets a hint about the text that is shown while there is no problem; empty for none.
    void setHint(const QString& hint);

    /// Sets the text that is shown as "no limit" unless it is being edited.
    void setUnlimited(const std::string& value);

    /// Says whether the text is the path of a folder: the panel that chooses another one begins there.
    void setNamesFolder(bool isPath) { namesFolder_ = isPath; }

    [[nodiscard]] bool namesFolder() const { return namesFolder_; }

  Q_SIGNALS:
    /// The problem or hint has changed; empty when there is none any more.
    void problemChanged(const QString& why);
    /// The user has finished editing, and has changed the text.
    void left();

  protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    struct Caret {
        int position = 0;
        int selectionStart = -1; ///< -1: nothing is selected
        int selectionLength = 0;
    };

    [[nodiscard]] Caret caretNow() const;
    void place(const Caret& caret);
    void restore(const QString& text, const Caret& caret);
    void load();
    void endDrag();
    void noteEntered();
    [[nodiscard]] bool propose(const QString& text, int caret, const Caret& before);
    void userEdited(const QString& text);
    void tellProblem();

    NSTextField& field_;
    RefreshQueue& queue_;
    Caret before_;     ///< the caret before the edit in progress
    Caret dragged_;    ///< the caret when a drag entered the field
    QString accepted_; ///< the text that the field has accepted, as shown
    QString problem_;
    QString hint_;
    bool namesFolder_ = false;
    std::string unlimited_;    ///< empty when there is no such text
    bool isEdited_ = false;    ///< the user has edited it since it was last left
    bool isDraggedOn_ = false; ///< a drag is over it
    std::string entered_;      ///< the field's text when the user began with it; never a password
    bool loading_ = false;
    bool holdsCaret_ = false; ///< do not update `before_`, whatever Qt signals
};

} // namespace frontend
