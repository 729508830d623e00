#include "tools/HelperComplaint.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

const char* adviceFor(int error) {
    switch (error) {
    case ENOENT:
        return "check that it exists";
    case EACCES:
    case EPERM:
        return "it takes the rights of its owner or of an administrator";
    case ENOSPC:
    case EDQUOT:
        return "make room on its disk and try again";
    case EROFS:
        return "its disk cannot be written: make it writable and try again";
    case ELOOP:
        return "a link stands where a file or folder is needed: name the file or folder itself";
    case ENOTDIR:
        return "a folder is needed";
    default:
        return "see to it and try again";
    }
}

} // namespace

HelperComplaint complaint(const std::string& tool, const std::string& subject, const std::string& why) {
    std::string shown = subject;
    std::ranges::replace_if(
        shown, [](unsigned char byte) { return byte < 0x20 || byte == 0x7f; }, '?');
    return tool + ": " + shown + ": " + why + "\n";
}

std::string reason(int error) {
    return std::string(std::strerror(error)) + "; " + adviceFor(error);
}
