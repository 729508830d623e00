#include "review/ServerReading.h"

#include "model/ServerSettings.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "review/SMBFields.h"

#include <algorithm>
#include <string_view>

namespace review {

namespace {

/// The last setting with exactly this key, which is what the window shows.
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

    /// `isOn` is how the window interprets a value; `standard` is what the window and the server assume
    /// without one.
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
            {&section,
             stringWithFormat(
                 NSLocalizedString(
                     "The SMB server takes the section [%@] for its [%@], and Brindle shows it as a share."),
                 section.ShareName().view(), std::string(meaning))});
    }

  private:
    void add(const SMBShare& section, const ServerSetting& read) {
        if (read.pair == nullptr) {
            return;
        }
        found_.push_back(
            {&section,
             stringWithFormat(
                 NSLocalizedString(
                     "The SMB server follows \"%@\" in the section [%@], which Brindle does not show."),
                 lineOf(*read.pair), section.ShareName().view())});
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

/// Adds the sections that the window does not show, to the sections above them, which it shows with their
/// lines.
void addHiddenSections(const SMBConf& conf, std::vector<OtherReading>* found) {
    for (const SMBHiddenSection& hidden : conf.hiddenSections()) {
        const auto above = std::ranges::find_if(conf.Entries(), [&](const auto& entry) {
            return entry->Type() == SMBGroup && entry->ShareName() == hidden.above;
        });
        if (above != conf.Entries().end()) {
            found->push_back(
                {above->get(),
                 stringWithFormat(
                     NSLocalizedString(
                         "The SMB server takes line %d \"%@\" of smb.conf for the header of another section, "
                         "and Brindle takes what follows for settings of [%@]."),
                     hidden.line, hidden.header, hidden.above)});
        }
    }
}

} // namespace

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
    addHiddenSections(conf, &found);
    return found;
}

} // namespace review
