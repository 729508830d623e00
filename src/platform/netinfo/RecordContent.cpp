#include "platform/netinfo/RecordContent.h"

namespace platform {

namespace {

constexpr unsigned bitsPerByte = 7;

void appendNumber(std::string& content, std::size_t number) {
    while (number >= moreFollows) {
        content += static_cast<char>((number & (moreFollows - 1U)) | moreFollows);
        number >>= bitsPerByte;
    }
    content += static_cast<char>(number);
}

void appendText(std::string& content, std::string_view text) {
    appendNumber(content, text.size());
    content += text;
}

} // namespace

void ContentWriter::property(std::string_view name, std::size_t valueCount) {
    appendText(content_, name);
    appendNumber(content_, valueCount);
}

void ContentWriter::value(std::string_view value) {
    appendText(content_, value);
}

std::string packedContent(std::span<const StoredProperty> properties) {
    ContentWriter content;
    for (const auto& property : properties) {
        content.property(property.name, property.values.size());
        for (const auto& value : property.values) {
            content.value(value);
        }
    }
    return content.content();
}

bool ContentReader::longNumber(std::size_t* number) {
    constexpr unsigned most = 4 * bitsPerByte; // a number larger than any content is damage
    *number = 0;
    std::size_t length = 0;
    for (unsigned shift = 0; shift <= most && length < rest_.size(); shift += bitsPerByte) {
        const auto byte = static_cast<unsigned char>(rest_[length++]);
        *number |= static_cast<std::size_t>(byte & (moreFollows - 1U)) << shift;
        if (byte == 0 && length > 1) {
            return fail(); // longer than a writer would make it
        }
        if (byte < moreFollows) {
            rest_.remove_prefix(length);
            return true;
        }
    }
    return fail();
}

bool unpackContent(std::string_view content, std::vector<StoredProperty>* properties) {
    ContentReader reader(content);
    std::string_view name;
    std::size_t count = 0;
    while (reader.nextProperty(&name, &count)) {
        auto& property = properties->emplace_back(StoredProperty{std::string(name), {}});
        property.values.reserve(count);
        for (std::string_view value; count > 0 && reader.nextValue(&value); --count) {
            property.values.emplace_back(value);
        }
    }
    return !reader.damaged();
}

} // namespace platform
