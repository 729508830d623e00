#include "platform/appkit/ShownWhen.h"

#include "platform/foundation/NSString.h"

#include <algorithm>

std::vector<std::vector<platform::ControlHas>> platform::parseShownWhen(std::string_view text) {
    std::vector<std::vector<ControlHas>> sides(1);
    for (const std::string& word : componentsSeparatedByString(std::string(text), " ")) {
        if (word == "or") {
            sides.emplace_back();
        } else if (!word.empty()) {
            const std::size_t sign = std::min(word.find('='), word.size());
            sides.back().push_back({word.substr(0, sign), word.substr(std::min(sign + 1, word.size()))});
        }
    }
    return sides;
}
