// A record of the directory's store. Bytes are either refused, or packing what was read from them gives the
// same bytes, so that no damage goes unnoticed.

#include "Fuzz.h"
#include "platform/netinfo/RecordBlock.h"
#include "platform/netinfo/RecordContent.h"

#include <algorithm>

namespace {

using Properties = std::vector<platform::StoredProperty>;

bool isSame(const platform::StoredProperty& one, const platform::StoredProperty& other) {
    return one.name == other.name && one.values == other.values;
}

void requireNoMisreading(std::string_view content) {
    Properties properties;
    const bool isWhole = platform::unpackContent(content, &properties);
    fuzz::require(!isWhole || platform::packedContent(properties) == content,
                  "what was read packs into the same bytes");
    platform::RecordBlock block;
    block.add(1, content);
    const auto& record = block.records().front();
    fuzz::require(block.isWhole(record) == isWhole, "both readers refuse the same");
    if (isWhole) {
        const bool isEqual =
            std::ranges::equal(block.properties(record), properties, [&](const auto& one, const auto& other) {
                return one.name == other.name && std::ranges::equal(block.values(one), other.values);
            });
        fuzz::require(isEqual, "both readers read the same");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    requireNoMisreading(fuzz::textOf(data, size));
    // Use the same bytes to draw a record, one line per property, and the byte to damage.
    fuzz::Draw draw(fuzz::textOf(data, size));
    const std::size_t place = draw.below(256);
    const char damage = static_cast<char>(1 + draw.below(255));
    Properties properties;
    while (!draw.isAtEnd()) {
        const std::string text = draw.upTo('\n');
        fuzz::Draw line(text);
        auto& property = properties.emplace_back(platform::StoredProperty{line.upTo('\t'), {}});
        while (!line.isAtEnd()) {
            property.values.push_back(line.upTo('\t'));
        }
    }
    std::string content = platform::packedContent(properties);
    Properties read;
    fuzz::require(platform::unpackContent(content, &read) && std::ranges::equal(read, properties, isSame),
                  "what was packed is read");
    if (place < content.size()) {
        content[place] = static_cast<char>(content[place] ^ damage);
        requireNoMisreading(content);
    }
    return 0;
}
