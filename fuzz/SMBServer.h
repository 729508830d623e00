#pragma once

#include "model/SMBParser.h"
#include "model/ServerSettings.h"
#include "platform/posix/LetterCase.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// How the SMB server reads smb.conf, written apart from the code that changes the file.

namespace fuzz {

/// A section as the server puts it together from all headers with that name.
struct ServerSection {
    std::size_t headers = 0;
    std::size_t strays = 0; ///< how many of the settings stand before the first header of the file
    std::vector<std::pair<std::string, std::string>> settings; ///< keys as the server compares them

    [[nodiscard]] bool operator==(const ServerSection& other) const {
        return headers == other.headers && settings == other.settings;
    }

    /// Returns the value that counts, or "(none)".
    [[nodiscard]] std::string valueOf(std::string_view key) const {
        std::string value = "(none)";
        for (const auto& [name, each] : settings) {
            value = mainSettingName(name) == mainSettingName(key) ? each : value;
        }
        return value;
    }
};

using ServerReading = std::map<std::string, ServerSection>;

inline std::string_view withoutWhiteSpace(std::string_view text) {
    text = SMBParser::withoutLeadingWhiteSpace(text);
    return text.substr(0, text.find_last_not_of(" \t\n\v\f\r") + 1);
}

/// Returns a section's name as the server compares it: without case, and with only the first character of
/// each piece of white space; only in "global" it ignores all of it. White space at the beginning, which it
/// does not ignore, is left out, because the model does not know it.
inline std::string serverName(std::string_view section) {
    if (isServerGlobal(section)) {
        return "global";
    }
    std::string name;
    bool isBlank = false;
    for (const char letter : platform::lowercased(SMBParser::withoutLeadingWhiteSpace(section))) {
        const bool wasBlank =
            std::exchange(isBlank, SMBParser::withoutLeadingWhiteSpace({&letter, 1}).empty());
        if (!isBlank || !wasBlank) {
            name += letter;
        }
    }
    return name;
}

/// Returns the lines without white space around them and without comments, each with what is joined to it.
inline std::vector<std::string> serverLines(std::string_view text) {
    std::vector<std::string> lines;
    bool isJoined = false;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = withoutWhiteSpace(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        const bool isPassedOver = !isJoined && (SMBParser::isComment(line) || line == "\\");
        if (line.empty() || isPassedOver) {
            isJoined = false;
            continue;
        }
        const bool isContinued = line.ends_with('\\');
        line.remove_suffix(isContinued ? 1 : 0);
        if (isJoined) {
            lines.back() += line;
        } else {
            lines.emplace_back(line);
        }
        isJoined = isContinued;
    }
    return lines;
}

inline ServerReading serverReading(std::string_view text) {
    ServerReading sections;
    ServerSection* current = &sections["global"];
    bool hasHeader = false;
    for (const std::string& line : serverLines(text)) {
        const std::size_t bracket = line.starts_with('[') ? line.find(']') : std::string::npos;
        const std::size_t equals = line.find('=');
        if (bracket != std::string::npos) {
            current = &sections[serverName(line.substr(1, bracket - 1))];
            ++current->headers;
            hasHeader = true;
        } else if (equals != std::string::npos) {
            current->settings.emplace_back(foldedSettingName(line.substr(0, equals)),
                                           withoutWhiteSpace(line.substr(equals + 1)));
            current->strays += hasHeader ? 0 : 1;
        }
    }
    return sections;
}

} // namespace fuzz
