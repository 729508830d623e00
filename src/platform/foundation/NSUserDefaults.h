#pragma once

#include "platform/foundation/NSDictionary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

/// The user's settings of this application: a property list below the user's configuration folder. The file
/// is read when a value is first needed. At every change it is read again and rewritten, so that other keys
/// are kept: those that this program does not know, and what another window has stored meanwhile. Without a
/// path the values last as long as this object.
class NSUserDefaults {
  public:
    explicit NSUserDefaults(std::string path) : path_(std::move(path)) {}

    /// The user defaults of the current host.
    [[nodiscard]] static NSUserDefaults& standardUserDefaults();

    /// The integer stored under `key` (a string is read by intValue), or none when there is no such key.
    [[nodiscard]] std::optional<std::int32_t> integerForKey(const std::string& key) const;
    /// Stores `value` and writes the file, creating its folder if necessary. A failure is logged with the
    /// file's name and the reason. A file that exists but is not a property list is left alone.
    void setInteger(std::int32_t value, const std::string& key);

    /// The same for a string.
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const;
    void setString(const std::string& value, const std::string& key);

  private:
    [[nodiscard]] std::string shownPath() const; ///< for messages
    void write();
    void readOnce() const;
    void readAgain(); ///< unless the file lacks something that is only in values_

    std::string path_;
    mutable std::optional<NSMutableDictionary> values_; ///< none until something is needed
    bool isStored_ = true;         ///< whether the file had all the values after the last change
    mutable bool mayWrite_ = true; ///< false when the file must not be replaced, because it could not be read
                                   ///< or is not a property list
};
