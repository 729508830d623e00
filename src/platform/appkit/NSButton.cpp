#include "platform/appkit/NSButton.h"

#include <filesystem>

#include <unistd.h>

std::shared_ptr<const NSImage> NSImage::imageWithContentsOfFile(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) || access(path.c_str(), R_OK) != 0) {
        return nullptr;
    }
    return std::make_shared<const NSImage>(path);
}

std::string NSImage::name() const {
    return std::filesystem::path(path_).stem().string();
}

void NSButton::setTitle(std::string title) {
    title_ = std::move(title);
    didChange();
}

void NSButton::setImage(std::shared_ptr<const NSImage> image) {
    image_ = std::move(image);
    didChange();
}

void NSButton::setState(int state) {
    state_ = state == NSOffState ? NSOffState : NSOnState;
    didChange();
}

void NSButton::performClick() {
    if (!isEnabled()) {
        return;
    }
    if (kind_ == NSButtonKind::CheckBox) {
        setState(state_ == NSOnState ? NSOffState : NSOnState);
        clicked_ = state_;
    }
    sendAction();
}

std::optional<std::string> NSButton::edit() const {
    return clicked_ == state_ ? std::optional(std::to_string(state_)) : std::nullopt;
}

void NSButton::copyState(const Element& from) {
    NSControl::copyState(from);
    const auto& other = dynamic_cast<const NSButton&>(from);
    title_ = other.title_;
    image_ = other.image_;
    state_ = other.state_;
    clicked_ = other.clicked_;
}

void NSMenuItem::performClick() {
    if (isEnabled()) {
        sendAction();
    }
}
