#include "model/ServerSettings.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <array>

namespace {

struct Synonym {
    std::string_view name;
    std::string_view key;
    bool inverted = false;
};

constexpr std::array<Synonym, 11> synonyms{{{"public", "guestok"},
                                            {"onlyguest", "guestonly"},
                                            {"writeable", "readonly", true},
                                            {"writable", "readonly", true},
                                            {"writeok", "readonly", true},
                                            {"browsable", "browseable"},
                                            {"directory", "path"},
                                            {"group", "forcegroup"},
                                            {"allowhosts", "hostsallow"},
                                            {"denyhosts", "hostsdeny"},
                                            {"printok", "printable"}}};

const Synonym* findSynonym(const std::string& name) {
    const auto* found = std::ranges::find(synonyms, name, &Synonym::name);
    return found == synonyms.end() ? nullptr : found;
}

/// The letters of the variables in smb.conf(5). In a share's name, the first five are not replaced.
constexpr std::string_view variables = "guHPSadhijmtvwDGIJLMNRTUV";
constexpr std::string_view variablesInNames = variables.substr(5);

bool hasVariable(std::string_view text, std::string_view letters) {
    for (std::size_t at = text.find('%'); at < text.size(); at = text.find('%', at + 1)) {
        const std::string_view rest = text.substr(at + 1);
        if (rest.starts_with("$(") ||
            (!rest.empty() && letters.find(rest.front()) != std::string_view::npos)) {
            return true;
        }
    }
    return false;
}

bool hasSeveralBlanks(std::string_view text) {
    return text.find("  ") != std::string_view::npos;
}

} // namespace

std::string foldedSettingName(std::string_view name) {
    std::string result;
    for (const char character : name) {
        if (character != ' ' && character != '\t') {
            // Not tolower, which in a Turkish locale leaves the I of "Invalid Users" as it is.
            const bool isUpper = character >= 'A' && character <= 'Z';
            result += isUpper ? static_cast<char>(character - 'A' + 'a') : character;
        }
    }
    return result;
}

std::string mainSettingName(std::string_view name) {
    std::string folded = foldedSettingName(name);
    const Synonym* synonym = findSynonym(folded);
    return synonym == nullptr ? folded : std::string(synonym->key);
}

std::optional<bool> serverBool(std::string_view value) {
    const std::string word = foldedSettingName(value);
    if (word == "yes" || word == "true" || word == "on" || word == "1") {
        return true;
    }
    if (word == "no" || word == "false" || word == "off" || word == "0") {
        return false;
    }
    return std::nullopt;
}

std::string_view withoutQuotes(std::string_view value) {
    const std::size_t begin = std::min(value.find_first_not_of('"'), value.size());
    const std::string_view inner = value.substr(begin, value.find_last_not_of('"') + 1 - begin);
    return inner.find('"') == std::string_view::npos ? inner : value;
}

bool isServerGlobal(std::string_view section) {
    const std::string name = foldedSettingName(section);
    return name == "global" || name == "globals";
}

bool isServerHomes(std::string_view section) {
    return isEqualIgnoringCase(section, "homes");
}

bool isServerVariable(char letter) {
    return variables.find(letter) != std::string_view::npos;
}

bool canBeReached(const std::string& share) {
    return !hasVariable(share, variablesInNames) && !hasSeveralBlanks(share) &&
           share.find('\\') == std::string::npos && !isEqualIgnoringCase(share, "IPC$");
}

bool isTakenLiterally(std::string_view path) {
    return !hasVariable(path, variables) && !hasSeveralBlanks(path);
}

ServerSetting serverSetting(const SMBShare& section, std::string_view key) {
    const std::string wanted = foldedSettingName(key);
    ServerSetting last;
    for (const SMBPair& pair : section.Props()) {
        const std::string name = foldedSettingName(pair.Name);
        const Synonym* synonym = findSynonym(name);
        if (name == wanted) {
            last = {&pair, false};
        } else if (synonym != nullptr && synonym->key == wanted) {
            last = {&pair, synonym->inverted};
        }
    }
    return last;
}

bool serverFlag(const SMBShare& section, std::string_view key, bool standard) {
    const ServerSetting setting = serverSetting(section, key);
    const auto value = setting.pair != nullptr ? serverBool(setting.pair->Value) : std::nullopt;
    return value ? *value != setting.inverted : standard;
}
