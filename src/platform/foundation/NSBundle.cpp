#include "platform/foundation/NSBundle.h"

#include "platform/foundation/Host.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

namespace {

/// Adds those entries of the table at `path` that no earlier language had.
void mergeTable(platform::StringTable& into, const std::string& path) {
    const auto contents = contentsOfFile(path);
    if (!contents.isOk()) {
        const int error = contents.status().systemError();
        if (error != ENOENT && error != ENOTDIR) {
            NSLog("cannot read the texts in %@: %@", path, contents.status().why());
        }
        return;
    }
    auto table = platform::readStringTable(*contents);
    if (table.isOk()) {
        into.merge(*table);
    } else {
        NSLog("cannot read the texts in %@: %@", path, table.status().why());
    }
}

std::string textFor(const platform::StringTable& table, const std::string& key,
                    const std::string& otherwise) {
    const auto found = table.find(key);
    return found == table.end() ? otherwise : found->second;
}

/// The folder names of languages by code, for translations whose folders have the language's name.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> languageNames = {{{"de", "German"},
                                                                                         {"en", "English"},
                                                                                         {"es", "Spanish"},
                                                                                         {"fr", "French"},
                                                                                         {"it", "Italian"},
                                                                                         {"ja", "Japanese"},
                                                                                         {"nl", "Dutch"},
                                                                                         {"sv", "Swedish"}}};

std::string environmentLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

} // namespace

NSBundle::NSBundle(std::string resourcePath, const std::vector<std::string>& languages)
    : resourcePath_(std::move(resourcePath)) {
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
    for (const auto& language : languages) {
        const std::string folder = resourcePath_ + "/" + language + ".lproj/";
        mergeTable(localizable_, folder + "Localizable.strings");
        mergeTable(infoPlist_, folder + "InfoPlist.strings");
    }
}

NSBundle& NSBundle::mainBundle() {
    return platform::Host::current().mainBundle();
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

std::string NSLocalizedString(const std::string& key) {
    return NSBundle::mainBundle().localizedStringForKey(key);
}

std::vector<std::string> platform::languagesFromEnvironment() {
    const std::string locale = environmentLocale();
    const std::string region = locale.substr(0, locale.find_first_of(".@"));
    const std::string code = region.substr(0, region.find('_'));
    std::vector<std::string> languages;
    // A language becomes part of a path, so only a plain code is accepted.
    const bool isPlain = region.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_") ==
                         std::string::npos;
    if (isPlain && !code.empty() && code != "C" && code != "POSIX") {
        if (region != code) {
            languages.push_back(region);
        }
        languages.push_back(code);
        for (const auto& [known, name] : languageNames) {
            if (known == code && name != "English") {
                languages.emplace_back(name);
            }
        }
    }
    languages.emplace_back("English");
    return languages;
}
