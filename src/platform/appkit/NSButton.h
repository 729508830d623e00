#pragma once

#include "platform/appkit/NSControl.h"

#include <memory>
#include <optional>
#include <string>

/// A picture from a file. Only its path is known here; a front-end draws it.
class NSImage {
  public:
    /// Null when `path` is not a readable file.
    [[nodiscard]] static std::shared_ptr<const NSImage> imageWithContentsOfFile(const std::string& path);

    explicit NSImage(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] const std::string& path() const { return path_; }

    /// The file's name without its extension.
    [[nodiscard]] std::string name() const;

  private:
    std::string path_;
};

enum class NSButtonKind { Push, CheckBox };

inline constexpr int NSOffState = 0;
inline constexpr int NSOnState = 1;

/// A push button or a check box.
class NSButton : public NSControl {
  public:
    explicit NSButton(NSButtonKind kind = NSButtonKind::Push) : kind_(kind) {}

    [[nodiscard]] NSButtonKind kind() const { return kind_; }

    [[nodiscard]] const std::string& title() const { return title_; }

    void setTitle(std::string title);

    [[nodiscard]] const std::shared_ptr<const NSImage>& image() const { return image_; }

    void setImage(std::shared_ptr<const NSImage> image);

    /// NSOnState or NSOffState.
    [[nodiscard]] int state() const { return state_; }

    void setState(int state);

    [[nodiscard]] std::optional<std::string> edit() const override;

    void forgetEdit() override { clicked_.reset(); }

    void copyState(const Element& from) override;

    /// "\r" for the button that Return presses, "\033" for the one that Escape presses, otherwise empty.
    [[nodiscard]] const std::string& keyEquivalent() const { return keyEquivalent_; }

    void setKeyEquivalent(std::string key) { keyEquivalent_ = std::move(key); }

    /// Does what a user's click does: a check box changes its state, then the action is sent. Does nothing
    /// while disabled.
    void performClick();

  private:
    NSButtonKind kind_;
    std::string title_;
    std::shared_ptr<const NSImage> image_;
    int state_ = NSOffState;
    std::optional<int> clicked_; ///< the state after the user's last click
    std::string keyEquivalent_;
};

/// An item of the menu bar.
class NSMenuItem : public NSControl {
  public:
    [[nodiscard]] const std::string& title() const { return title_; }

    void setTitle(std::string title) { title_ = std::move(title); }

    /// Does what a user's choice does: sends the action. Does nothing while disabled.
    void performClick();

  private:
    std::string title_;
};
