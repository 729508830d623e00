#pragma once

#include "platform/foundation/NSDictionary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

/// The user's settings of this application: a property list below the user's configuration folder. The file
/// is read when a value is first needed, and rewritten at every change; keys that this program does not know
/// are kept. Without a path the values last as long as this object.
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
    void write() const;
    void readOnce() const;

    std::string path_;
    mutable std::optional<NSMutableDictionary> values_; ///< none until something is needed
    mutable bool mayWrite_ = true; ///< false when the file must not be replaced, because it could not be read
                                   ///< or is not a property list
};
