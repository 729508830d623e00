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
    /// ASCII form. None when the file is missing, unreadable, not a property list, or has another root.
    [[nodiscard]] static std::optional<NSMutableDictionary>
    dictionaryWithContentsOfFile(const std::string& path);
    /// The same from the bytes of a file.
    [[nodiscard]] static std::optional<NSMutableDictionary> dictionaryWithData(std::string_view bytes);

    [[nodiscard]] bool hasKey(const std::string& key) const;
    /// The boolean meaning: a boolean's value, a number other than 0, a string that begins with Y, y, T, t or
    /// a digit 1 to 9 (after white space, a sign and zeros). A missing key or another type is false.
    [[nodiscard]] bool boolForKey(const std::string& key) const;
    /// The integer meaning: an integer (saturated to 32 bits), a real truncated, a boolean as 1 or 0,
    /// a string by intValue. A missing key or another type is 0.
    [[nodiscard]] std::int32_t intForKey(const std::string& key) const;
    /// A string, or a number as a string; none for a missing key or another type.
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const;
    /// The nested dictionary under `key`, changed in place through what is returned; none when it is not
    /// there.
    [[nodiscard]] std::optional<NSMutableDictionary> dictionaryForKey(const std::string& key) const;

    /// Each replaces the value in its place among the keys, or adds the key at the end. A view of a
    /// nested dictionary that is replaced must not be used any more.
    void setBool(bool value, const std::string& key);
    void setInt(std::int64_t value, const std::string& key);
    void setString(const std::string& value, const std::string& key);

    /// The same property list with data of its own.
    [[nodiscard]] NSMutableDictionary copy() const;
    /// Every value that is no dictionary, in order, by its key's path ("loggingAttributes.logLogin") and as a
    /// string: "true" or "false", a number or string as it is, an array or data as XML.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> values() const;

    /// The XML property list, a line break at its end.
    [[nodiscard]] std::string xmlText() const;
    /// Writes xmlText() whole (see writeToFileAtomically).
    [[nodiscard]] platform::Status writeToFile(const std::string& path) const;

  private:
    struct Node;

    explicit NSMutableDictionary(std::shared_ptr<Node> node) : node_(std::move(node)) {}

    std::shared_ptr<Node> node_;
};
