#include "access/HiddenSection.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/ShellWord.h"

namespace accesscheck {

std::string nameOf(const SMBHiddenSection& section) {
    constexpr const char* blanks = " \t";
    const std::size_t end = section.header.find(']');
    if (end == std::string::npos) {
        return {};
    }
    const std::string name = section.header.substr(1, end - 1);
    const std::size_t begin = name.find_first_not_of(blanks);
    return begin == std::string::npos ? "" : name.substr(begin, name.find_last_not_of(blanks) + 1 - begin);
}

std::string sentenceAbout(const SMBHiddenSection& section) {
    return stringWithFormat(
        NSLocalizedString(
            "Line %d of smb.conf, \"%@\", begins a section only for the SMB server: Brindle does "
            "not see it, because something follows the \"]\"."),
        section.line, section.header);
}

std::string remedyFor(const SMBHiddenSection& section, const std::string& file, bool isOfRoot) {
    if (nameOf(section).empty()) {
        return {};
    }
    return std::string(isOfRoot ? "" : "sudo ") + "sed -i " +
           platform::shellWord(std::to_string(section.line) + "s/\\].*/]/") + " " + platform::shellWord(file);
}

} // namespace accesscheck
