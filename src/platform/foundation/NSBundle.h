#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/StringTable.h"

#include <string>
#include <vector>

/// The application's resource folder: Info.plist, interface files, images, and for each language a folder of
/// string tables ("English.lproj/Localizable.strings") and other files of its own.
class NSBundle {
  public:
    /// `languages` are names of folders without ".lproj", in order of preference. Missing folders are
    /// skipped, and so are tables that cannot be read, which are logged with the line of the fault.
    NSBundle(std::string resourcePath, std::vector<std::string> languages);

    /// The bundle of the current host.
    [[nodiscard]] static NSBundle& mainBundle();

    [[nodiscard]] const std::string& resourcePath() const { return resourcePath_; }

    /// The path of the file with that name in the folder of the first language that has it, or else in the
    /// resource folder, even if it is not there.
    [[nodiscard]] std::string pathForResource(const std::string& file) const;

    /// The string under `key` in Info.plist, or "" when there is none.
    [[nodiscard]] std::string objectForInfoDictionaryKey(const std::string& key) const;
    /// The same, but prefers a translation in the language's table "InfoPlist".
    [[nodiscard]] std::string objectForLocalInfoDictionaryKey(const std::string& key) const;
    /// The text for `key` in the table "Localizable" of the first language that has it, or else `key` itself.
    [[nodiscard]] std::string localizedStringForKey(const std::string& key) const;
    /// The first language that has such a table, as its ISO 639 code ("de") if that is known, or else as the
    /// folder's name; empty when there is none.
    [[nodiscard]] std::string languageCode() const;

  private:
    std::string resourcePath_;
    std::vector<std::string> languages_;
    NSMutableDictionary info_;
    platform::StringTable localizable_;
    platform::StringTable infoPlist_;
    std::string language_;
};

/// mainBundle()'s localized string for `key`.
[[nodiscard]] std::string NSLocalizedString(const std::string& key);

namespace platform {
/// The languages that the environment asks for, read as by gettext: those in LANGUAGE, or else the one in the
/// first of LC_ALL, LC_MESSAGES and LANG that is set; none in the locale C. Returned as names for NSBundle:
/// for each language its region if there is one ("de_AT"), its code ("de"), and its English name if known
/// ("German"). The list ends with "English", which has every text. The locale need not be installed.
[[nodiscard]] std::vector<std::string> languagesFromEnvironment();
/// The same without LANGUAGE.
[[nodiscard]] std::vector<std::string> languagesOfLocale();
} // namespace platform
