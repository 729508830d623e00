// Requests to the helper, by themselves and in frames. Nothing is carried out. An accepted request
// corresponds exactly to its bytes, so that what was checked is what would run.

#include "Fuzz.h"
#include "directory/DirectoryRules.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/security/HelperProtocol.h"
#include "tools/Helper.h"

namespace {

void judge(std::string_view bytes) {
    const auto request = tools::parseHelperRequest(bytes);
    if (!request) {
        fuzz::require(bytes.empty() || bytes.back() != '\0', "only what has no end is refused");
        return;
    }
    fuzz::require(bytes.size() > platform::maximumHelperRequest ||
                      platform::helperRequest(request->tool, request->arguments) == bytes,
                  "a request is its bytes");
    fuzz::require(tools::isHelperTool(request->tool) || !platform::waitsForCommit(request->tool),
                  "nicl is on the list");
    if (const auto change = directoryChange(request->arguments)) {
        const auto status = checkDirectoryChange(*change);
        fuzz::require(status.isOk() || !status.why().empty(), "a refusal says why");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes = fuzz::textOf(data, size);
    judge(bytes);
    while (bytes.size() >= platform::frameHeaderSize) {
        const std::string_view header = bytes.substr(0, platform::frameHeaderSize);
        const std::size_t length = platform::frameSize(header);
        fuzz::require(platform::frameHeader(length) == header, "a frame's length is its bytes");
        bytes.remove_prefix(platform::frameHeaderSize);
        if (length > platform::maximumHelperRequest || length > bytes.size()) {
            break; // the helper ends
        }
        judge(bytes.substr(0, length));
        bytes.remove_prefix(length);
    }
    return 0;
}
