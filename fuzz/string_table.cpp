// String tables: what was read, written and read again is the same table.

#include "Fuzz.h"
#include "platform/foundation/StringTable.h"

namespace {

std::string inQuotes(std::string_view text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += character;
    }
    return result + '"';
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto table = platform::readStringTable(fuzz::textOf(data, size));
    if (!table.isOk()) {
        fuzz::require(!table.status().text().empty(), "a refusal says why");
        return 0;
    }
    std::string written;
    for (const auto& [key, value] : *table) {
        written += inQuotes(key) + " = " + inQuotes(value) + ";\n";
    }
    const auto again = platform::readStringTable(written);
    fuzz::require(again.isOk() && *again == *table, "what was written is what was read", written);
    return 0;
}
