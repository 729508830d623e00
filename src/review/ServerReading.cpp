#include "review/ServerReading.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "review/SMBFields.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace review {

namespace {

struct Synonym {
    std::string_view name;
    std::string_view key;
    bool inverted = false;
};

constexpr std::array<Synonym, 6> synonyms{{{"public", "guestok"},
                                           {"writeable", "readonly", true},
                                           {"writable", "readonly", true},
                                           {"writeok", "readonly", true},
                                           {"browsable", "browseable"},
                                           {"directory", "path"}}};

/// In lower case and without blanks, as the server compares names.
std::string folded(std::string_view name) {
    std::string result;
    for (const char character : name) {
        if (character != ' ' && character != '\t') {
            result += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
        }
    }
    return result;
}

/// The last setting written exactly so, which is what the window reads.
const SMBPair* shownSetting(const SMBShare& section, std::string_view key) {
    const SMBPair* last = nullptr;
    for (const SMBPair& pair : section.Props()) {
        last = pair.Name == key ? &pair : last;
    }
    return last;
}

std::string lineOf(const SMBPair& pair) {
    return pair.Name.str() + " = " + pair.Value.str();
}

class Reader {
  public:
    explicit Reader(std::vector<OtherReading>* found) : found_(*found) {}

    /// `isOn` is what the window makes of a value; `standard` what it and the server take without one.
    void flag(const SMBShare& section, std::string_view key, bool standard, bool (*isOn)(std::string_view)) {
        const SMBPair* shown = shownSetting(section, key);
        const bool shownState = shown != nullptr ? isOn(shown->Value) : standard;
        if (serverFlag(section, key, standard) != shownState) {
            add(section, serverSetting(section, key));
        }
    }

    void text(const SMBShare& section, std::string_view key) {
        const SMBPair* shown = shownSetting(section, key);
        const ServerSetting read = serverSetting(section, key);
        if (read.pair != nullptr && (shown == nullptr || !(shown->Value == read.pair->Value.view()))) {
            add(section, read);
        }
    }

    void name(const SMBShare& section, std::string_view meaning) {
        found_.push_back(
            {&section, stringWithFormat(NSLocalizedString("The SMB server takes the section [%@] for its "
                                                          "[%@], and Brindle shows it as a share."),
                                        section.ShareName(), std::string(meaning))});
    }

  private:
    void add(const SMBShare& section, const ServerSetting& read) {
        if (read.pair == nullptr) {
            return;
        }
        found_.push_back(
            {&section, stringWithFormat(NSLocalizedString("The SMB server follows \"%@\" in the section "
                                                          "[%@], which Brindle does not show."),
                                        lineOf(*read.pair), section.ShareName())});
    }

    std::vector<OtherReading>& found_;
};

bool isYes(std::string_view value) {
    return value == "yes";
}

bool isYesInAnyCase(std::string_view value) {
    return isEqualIgnoringCase(std::string(value), "yes");
}

void readGlobal(const SMBShare& section, Reader& reader) {
    for (const SMBTextField& field : smbTextFields) {
        reader.text(section, field.key);
    }
    for (const std::string_view key : {"security", "dos charset"}) {
        reader.text(section, key);
    }
    for (const std::string_view key : {"local master", "hide dot files"}) {
        reader.flag(section, key, true, &isYes);
    }
}

void readHomes(const SMBShare& section, Reader& reader) {
    for (const std::string_view key : {"browseable", "read only"}) {
        reader.flag(section, key, true, &isYes);
    }
}

} // namespace

std::optional<bool> serverBool(std::string_view value) {
    const std::string word = folded(value);
    if (word == "yes" || word == "true" || word == "on" || word == "1") {
        return true;
    }
    if (word == "no" || word == "false" || word == "off" || word == "0") {
        return false;
    }
    return std::nullopt;
}

bool isServerGlobal(std::string_view section) {
    const std::string name = folded(section);
    return name == "global" || name == "globals";
}

bool isServerHomes(std::string_view section) {
    return folded(section) == "homes";
}

ServerSetting serverSetting(const SMBShare& section, std::string_view key) {
    const std::string wanted = folded(key);
    ServerSetting last;
    for (const SMBPair& pair : section.Props()) {
        const std::string name = folded(pair.Name);
        const auto* const synonym = std::ranges::find(synonyms, name, &Synonym::name);
        if (name == wanted) {
            last = {&pair, false};
        } else if (synonym != synonyms.end() && synonym->key == wanted) {
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

std::vector<OtherReading> otherReadings(const SMBConf& conf) {
    std::vector<OtherReading> found;
    Reader reader(&found);
    for (const auto& entry : conf.Entries()) {
        const SMBShare& section = *entry;
        if (section.Type() != SMBGroup) {
            continue;
        }
        if (section.ShareName() == "global") {
            readGlobal(section, reader);
        } else if (section.ShareName() == "homes") {
            readHomes(section, reader);
        } else if (isServerGlobal(section.ShareName())) {
            reader.name(section, "global");
        } else if (isServerHomes(section.ShareName())) {
            reader.name(section, "homes");
        } else {
            reader.flag(section, "guest ok", false, &isYesInAnyCase);
            reader.text(section, "path");
        }
    }
    return found;
}

} // namespace review
