#include "tools/HelperComplaint.h"

#include "tools/ToolText.h"

#include <cerrno>
#include <string_view>

namespace tools {

namespace {

std::string_view adviceFor(int error) {
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
        return "a link is where a file or folder is needed: name the file or folder itself";
    case ENOTDIR:
        return "a folder is needed";
    default:
        return {};
    }
}

} // namespace

std::string complaint(const std::string& tool, const platform::Status& status) {
    if (status.isOk()) {
        return {};
    }
    const int error = status.systemError();
    const std::string_view advice = adviceFor(error);
    return oneLine(tool + ": " + status.text() + (advice.empty() ? "" : "; " + std::string(advice)));
}

} // namespace tools
