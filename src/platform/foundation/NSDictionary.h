#pragma once

#include "platform/posix/Status.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A property list whose root is a dictionary, kept as libplist holds it, so that keys and types that nobody
/// uses are written back unchanged. A copy, and a view of a nested dictionary, share the data of the
/// original.
class NSMutableDictionary {
  public:
    NSMutableDictionary();

    /// The dictionary in the file at `path` (mapped by the host): XML in UTF-8 or UTF-16, binary, or the old
    /// ASCII form. None when the file is missing, unreadable or not a property list, or when its root is not
    /// a dictionary.
    [[nodiscard]] static std::optional<NSMutableDictionary>
    dictionaryWithContentsOfFile(const std::string& path);
    /// The same from the bytes of a file.
    [[nodiscard]] static std::optional<NSMutableDictionary> dictionaryWithData(std::string_view bytes);

    [[nodiscard]] bool hasKey(const std::string& key) const;
    /// The value as a boolean. True are: the boolean true, a number other than 0, and a string that begins
    /// with Y, y, T, t or a digit from 1 to 9 (after white space, a sign and zeros). A missing key or another
    /// type gives false.
    [[nodiscard]] bool boolForKey(const std::string& key) const;
    /// The value as an integer: an integer saturated to 32 bits, a real truncated, a boolean as 1 or 0, a
    /// string as intValue reads it. A missing key or another type gives 0.
    [[nodiscard]] std::int32_t intForKey(const std::string& key) const;
    /// A string, or a number as a string; none for a missing key or another type.
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const;
    /// The nested dictionary under `key`, or none when it is not there. Changes to the returned dictionary
    /// change the original.
    [[nodiscard]] std::optional<NSMutableDictionary> dictionaryForKey(const std::string& key) const;

    /// Each replaces the key's value without changing the order of the keys, or adds the key at the end. Once
    /// a nested dictionary has been replaced, a view of it must not be used any more.
    void setBool(bool value, const std::string& key);
    void setInt(std::int64_t value, const std::string& key);
    void setString(const std::string& value, const std::string& key);

    /// The same property list with data of its own.
    [[nodiscard]] NSMutableDictionary copy() const;
    /// Every value that is not a dictionary, in order: the path of its key ("loggingAttributes.logLogin") and
    /// the value as a string ("true" or "false", a number or string as it is, an array or data as XML).
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> values() const;

    /// The property list as XML, with a line break at the end. Throws std::runtime_error when libplist cannot
    /// write it.
    [[nodiscard]] std::string xmlText() const;
    /// Writes xmlText() to a file; see writeToFileAtomically.
    [[nodiscard]] platform::Status writeToFile(const std::string& path) const;

  private:
    struct Node;

    explicit NSMutableDictionary(std::shared_ptr<Node> node) : node_(std::move(node)) {}

    std::shared_ptr<Node> node_;
};
