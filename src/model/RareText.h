#pragma once

#include <memory>
#include <string>

/// A string that most of many objects do not have. It takes a pointer's room until it is made.
class RareText {
  public:
    RareText() = default;

    RareText(const RareText& other)
        : text_(other.text_ ? std::make_unique<std::string>(*other.text_) : nullptr) {}

    RareText(RareText&&) noexcept = default;

    RareText& operator=(RareText other) noexcept {
        text_.swap(other.text_);
        return *this;
    }

    ~RareText() = default;

    [[nodiscard]] bool isMade() const { return text_ != nullptr; }

    /// Empty if it has not been made.
    [[nodiscard]] const std::string& str() const {
        static const std::string none;
        return text_ ? *text_ : none;
    }

    /// The string, which is made if it has not been. The reference is valid until this object is assigned to
    /// or destroyed.
    [[nodiscard]] std::string& made() {
        if (!text_) {
            text_ = std::make_unique<std::string>();
        }
        return *text_;
    }

  private:
    std::unique_ptr<std::string> text_;
};
