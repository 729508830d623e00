#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/StringTable.h"

#include <string>
#include <vector>

/// The application's resource folder: Info.plist, interface files, images and one folder of string tables a
/// language
/// ("English.lproj/Localizable.strings").
class NSBundle {
  public:
    /// `languages` in the order of preference, each the name of a folder without ".lproj"; missing folders
    /// are skipped. A table that cannot be read is logged with its line and skipped.
    NSBundle(std::string resourcePath, const std::vector<std::string>& languages);

    /// The current host's.
    [[nodiscard]] static NSBundle& mainBundle();

    [[nodiscard]] const std::string& resourcePath() const { return resourcePath_; }

    /// The string under `key` in Info.plist, or "" when there is none.
    [[nodiscard]] std::string objectForInfoDictionaryKey(const std::string& key) const;
    /// The same, but a translation in the language's table "InfoPlist" comes first.
    [[nodiscard]] std::string objectForLocalInfoDictionaryKey(const std::string& key) const;
    /// The text for `key` in the table "Localizable" of the first language that has it; else `key` itself.
    [[nodiscard]] std::string localizedStringForKey(const std::string& key) const;
    /// The first language that has such a table, as ISO 639 names it ("de") where that is known; else its
    /// folder's name; empty where there is none.
    [[nodiscard]] std::string languageCode() const;

  private:
    std::string resourcePath_;
    NSMutableDictionary info_;
    platform::StringTable localizable_;
    platform::StringTable infoPlist_;
    std::string language_;
};

/// mainBundle()'s localized string for `key`.
[[nodiscard]] std::string NSLocalizedString(const std::string& key);

namespace platform {
/// The languages that the environment asks for, as gettext reads it: those of LANGUAGE, else the one of
/// LC_ALL, LC_MESSAGES, LANG (the first that is set), and in the locale C none. As names for NSBundle: of
/// each language the region's folder where one is named ("de_AT"), the language's ("de"), its English name
/// where known ("German"); "English" at the latest at the end. The system need not know the locale.
[[nodiscard]] std::vector<std::string> languagesFromEnvironment();
/// The same without LANGUAGE.
[[nodiscard]] std::vector<std::string> languagesOfLocale();
} // namespace platform
