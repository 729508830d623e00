#include "privileged/ToolStream.h"

#include "platform/foundation/NSString.h"

#include <array>

std::optional<std::string> readToolStream(std::FILE* stream) {
    std::string bytes;
    std::array<char, 512> chunk{};
    std::size_t count = 0;
    do {
        count = std::fread(chunk.data(), 1, chunk.size(), stream);
        bytes.append(chunk.data(), count);
    } while (count == chunk.size());
    if (!isValidUTF8(bytes)) {
        return std::nullopt;
    }
    return bytes;
}
