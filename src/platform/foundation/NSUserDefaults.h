#pragma once

#include "platform/foundation/NSDictionary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

/// The user's settings of this application: a property list below the user's configuration folder. Read when
/// a value is asked for first, and written whole at every change; keys of others in it are kept. Without a
/// path the values last as long as this object.
class NSUserDefaults {
  public:
    explicit NSUserDefaults(std::string path) : path_(std::move(path)) {}

    /// The current host's.
    [[nodiscard]] static NSUserDefaults& standardUserDefaults();

    /// The integer stored under `key` (a string is read by intValue), or none when there is no such key.
    [[nodiscard]] std::optional<std::int32_t> integerForKey(const std::string& key) const;
    /// Stores `value` and writes the file, making its folder. A failure is logged with the file's name and
    /// the reason; a file that exists and is not a property list is left alone.
    void setInteger(std::int32_t value, const std::string& key);

    /// The same for a string.
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const;
    void setString(const std::string& value, const std::string& key);

  private:
    void write() const;
    void readOnce() const;

    std::string path_;
    mutable std::optional<NSMutableDictionary> values_; ///< none until something is asked for
    mutable bool mayWrite_ = true; ///< false when the file holds something else that must not be replaced
};
