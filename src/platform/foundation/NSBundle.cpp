#include "platform/foundation/NSBundle.h"

#include "platform/foundation/Host.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSString.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <system_error>
#include <utility>

namespace {

/// Adds those entries of the table at `path` that no earlier language has. Returns false when there is no
/// table, or it cannot be read.
bool mergeTable(platform::StringTable& into, const std::string& path) {
    const auto contents = contentsOfFile(path);
    if (!contents.isOk()) {
        const int error = contents.status().systemError();
        if (error != ENOENT && error != ENOTDIR) {
            NSLog("cannot read the texts in %@: %@", path, contents.status().why());
        }
        return false;
    }
    auto table = platform::readStringTable(*contents);
    if (table.isOk()) {
        into.merge(*table);
    } else {
        NSLog("cannot read the texts in %@: %@", path, table.status().why());
    }
    return table.isOk();
}

std::string textFor(const platform::StringTable& table, const std::string& key,
                    const std::string& otherwise) {
    const auto found = table.find(key);
    return found == table.end() ? otherwise : found->second;
}

/// The English names of languages by code, for translations whose folders are named in English.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> languageNames = {{{"de", "German"},
                                                                                         {"en", "English"},
                                                                                         {"es", "Spanish"},
                                                                                         {"fr", "French"},
                                                                                         {"it", "Italian"},
                                                                                         {"ja", "Japanese"},
                                                                                         {"nl", "Dutch"},
                                                                                         {"sv", "Swedish"}}};

constexpr std::string_view fallback = "English";

/// The value of the first of these variables that is not empty.
std::string environmentValue(std::initializer_list<const char*> variables) {
    for (const char* variable : variables) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

/// Whether the locale is "C" or "POSIX", in any encoding, which stand for no language.
bool isPlainLocale(const std::string& locale) {
    const std::string name = locale.substr(0, locale.find('.'));
    return name.empty() || name == "C" || name == "POSIX";
}

/// Adds those folder names for a locale like "de_AT.UTF-8" that are not in the list yet.
void addLanguage(std::vector<std::string>& languages, const std::string& locale) {
    const auto add = [&languages](std::string_view name) {
        if (std::ranges::find(languages, name) == languages.end()) {
            languages.emplace_back(name);
        }
    };
    const std::string region = locale.substr(0, locale.find_first_of(".@"));
    const std::string code = region.substr(0, region.find('_'));
    if (isPlainLocale(locale)) {
        add(fallback);
        return;
    }
    // A language becomes part of a path, so only a plain code is accepted.
    if (code.empty() || region.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_") !=
                            std::string::npos) {
        return;
    }
    add(region);
    add(code);
    for (const auto& [known, name] : languageNames) {
        if (known == code) {
            add(name);
        }
    }
}

std::string environmentLocale() {
    return environmentValue({"LC_ALL", "LC_MESSAGES", "LANG"});
}

/// The folder names for a list of locales separated by colons, up to English, which has every text.
std::vector<std::string> languagesIn(const std::string& locales) {
    std::vector<std::string> languages;
    for (const auto& each : componentsSeparatedByString(locales, ":")) {
        const bool hasEnglish = !languages.empty() && languages.back() == fallback;
        if (!each.empty() && !hasEnglish) {
            addLanguage(languages, each);
        }
    }
    addLanguage(languages, "C");
    return languages;
}

} // namespace

NSBundle::NSBundle(std::string resourcePath, std::vector<std::string> languages)
    : resourcePath_(std::move(resourcePath)), languages_(std::move(languages)) {
    const std::string infoFile = resourcePath_ + "/Info.plist";
    const auto info = contentsOfFile(infoFile);
    if (info.isOk()) {
        auto dictionary = NSMutableDictionary::dictionaryWithData(*info);
        if (dictionary) {
            info_ = std::move(*dictionary);
        } else {
            NSLog("%@ is not a property list with a dictionary", infoFile);
        }
    } else {
        NSLog("%@", info.status().text());
    }
    for (const auto& language : languages_) {
        const std::string folder = resourcePath_ + "/" + language + ".lproj/";
        const bool isThere = mergeTable(localizable_, folder + "Localizable.strings");
        language_ = isThere && language_.empty() ? language : language_;
        mergeTable(infoPlist_, folder + "InfoPlist.strings");
    }
}

NSBundle& NSBundle::mainBundle() {
    return platform::Host::current().mainBundle();
}

std::string NSBundle::pathForResource(const std::string& file) const {
    for (const auto& language : languages_) {
        std::string path = stringWithFormat("%@/%@.lproj/%@", resourcePath_, language, file);
        if (std::error_code error; std::filesystem::exists(path, error)) {
            return path;
        }
    }
    return resourcePath_ + "/" + file;
}

std::string NSBundle::objectForInfoDictionaryKey(const std::string& key) const {
    return info_.stringForKey(key).value_or("");
}

std::string NSBundle::objectForLocalInfoDictionaryKey(const std::string& key) const {
    return textFor(infoPlist_, key, objectForInfoDictionaryKey(key));
}

std::string NSBundle::localizedStringForKey(const std::string& key) const {
    return textFor(localizable_, key, key);
}

std::string NSBundle::languageCode() const {
    for (const auto& [code, name] : languageNames) {
        if (name == language_) {
            return std::string(code);
        }
    }
    return language_;
}

std::string NSLocalizedString(const std::string& key) {
    return NSBundle::mainBundle().localizedStringForKey(key);
}

std::vector<std::string> platform::languagesFromEnvironment() {
    const std::string wanted = environmentValue({"LANGUAGE"});
    return wanted.empty() || isPlainLocale(environmentLocale()) ? languagesOfLocale() : languagesIn(wanted);
}

std::vector<std::string> platform::languagesOfLocale() {
    return languagesIn(environmentLocale());
}
