#include "tools/ToolText.h"

#include <algorithm>

namespace tools {

std::string oneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char character) { return static_cast<unsigned char>(character) < 0x20; }, '?');
    return text + "\n";
}

} // namespace tools
