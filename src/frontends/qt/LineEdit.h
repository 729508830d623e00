#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSTextField.h"

#include <QLineEdit>

/// A line edit over a text field's model. Every edit of the user (a key, a paste, a drop, an input method's
/// text, cut, undo) is proposed to the field before it counts: a refused one leaves text, caret and selection
/// as they were. What the program puts into the field is shown without being asked about.
class LineEdit : public QLineEdit {
    Q_OBJECT

  public:
    LineEdit(NSTextField& field, RefreshQueue& queue);

    /// Tells the field that the user is done with it. Called on Return, when the focus is lost, and before
    /// anything acts on the field while it keeps the focus (a menu's shortcut).
    void endEditing();

    /// Says why the text cannot be used, for as long as it stays as it is. A screen reader reads it with the
    /// field.
    void setProblem(const QString& why);

    /// What is to be said of the text while nothing is wrong with it; empty: nothing.
    void setHint(const QString& hint);

    /// The text that is shown as "no limit" while nobody edits it.
    void setUnlimited(const std::string& value);

    void setNamesFolder(bool isPath) { namesFolder_ = isPath; }

    [[nodiscard]] bool namesFolder() const { return namesFolder_; }

  Q_SIGNALS:
    /// What is wrong with the text, or to be said of it; empty: nothing any more.
    void problemChanged(const QString& why);
    /// The user is done with the field, and its text is another than when they began.
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
    Caret before_;     ///< as it was before the edit in progress
    Caret dragged_;    ///< as it was when a drag came over the field
    QString accepted_; ///< the text that the field has agreed to, as it is shown
    QString problem_;
    QString hint_;
    bool namesFolder_ = false;
    std::string unlimited_;    ///< empty: there is no such text
    bool isEdited_ = false;    ///< by the user, since the field was left
    bool isDraggedOn_ = false; ///< something is held over it
    std::string entered_;      ///< the field's text when the user began with it; never a password
    bool loading_ = false;
    bool holdsCaret_ = false; ///< `before_` stays as it is, whatever Qt signals
};
