#pragma once

#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSFormatter.h"

#include <memory>
#include <optional>
#include <string>

class NSTextField;

/// Told about a field's refused edits.
class NSTextFieldDelegate {
  public:
    virtual ~NSTextFieldDelegate() = default;
    /// `partial` was refused by the field's formatter with `errorDescription`.
    virtual void controlDidFailToValidatePartialString(NSTextField* control, const std::string& partial,
                                                       const std::string& errorDescription) = 0;
};

/// A text field. What the program sets is not checked and sends nothing; a user's edits come in through
/// proposeEdit and endEditing.
class NSTextField : public NSControl {
  public:
    [[nodiscard]] const std::string& stringValue() const { return text_; }

    void setStringValue(std::string text);

    /// The string as intValue reads it.
    [[nodiscard]] std::int32_t intValue() const;
    void setIntValue(std::int32_t value);

    void setFormatter(std::shared_ptr<NSFormatter> formatter) { formatter_ = std::move(formatter); }

    /// Not owned; may be null.
    void setDelegate(NSTextFieldDelegate* delegate) { delegate_ = delegate; }

    /// False for a field that only shows text (a label): a user cannot type into it.
    [[nodiscard]] bool isEditable() const { return editable_; }

    void setEditable(bool editable) { editable_ = editable; }

    /// True for a field whose text must not be shown.
    [[nodiscard]] virtual bool isSecure() const { return false; }

    /// Always none for a secure field, because no second copy of its text is kept.
    [[nodiscard]] std::optional<std::string> edit() const override {
        return typed_ == text_ ? typed_ : std::nullopt;
    }

    void forgetEdit() override { typed_.reset(); }

    void copyState(const Element& from) override;

    /// A user's edit, given as the whole text after it, the caret after it and the selection before it. A
    /// line break in what is entered becomes a blank, and other control characters except the tab are left
    /// out. If the formatter refuses the text, the presenter is told, then the delegate, the field stays as
    /// it was, and false is returned. Otherwise the field takes the text and sends its action. A field that
    /// is disabled or not editable returns false and does nothing.
    [[nodiscard]] bool proposeEdit(std::string proposed, std::size_t proposedCaret,
                                   NSRange originalSelection);
    /// The user leaves the field: a field with a formatter then shows its value as the formatter writes it
    /// (007 becomes 7). An empty text, or one that the formatter cannot read, stays. Sends nothing.
    void endEditing();
    /// Does what a user does who selects everything, enters `text` as one edit, which the formatter may
    /// refuse, and leaves the field.
    void performReplace(const std::string& text);

  protected:
    /// Overwrites the text in memory.
    void wipeText();

  private:
    /// Takes over `text`; a secure field wipes the original.
    void takeText(std::string& text);
    void noteTyped();

    std::string text_;
    std::optional<std::string> typed_; ///< the text after the user's last edit
    std::shared_ptr<NSFormatter> formatter_;
    NSTextFieldDelegate* delegate_ = nullptr;
    bool editable_ = true;
};

/// A field for a password. Its text is overwritten in memory before it is dropped.
class NSSecureTextField : public NSTextField {
  public:
    ~NSSecureTextField() override;

    [[nodiscard]] bool isSecure() const override { return true; }
};
