#include "platform/foundation/NSDictionary.h"

#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/PropertyListText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <utility>

#include <plist/plist.h>

namespace {

struct Free {
    void operator()(void* plist) const { plist_free(plist); }
};

constexpr std::string_view binaryMagic = "bplist00";
using Limits = std::numeric_limits<std::int32_t>;

std::int64_t integerIn(plist_t item) {
    std::uint64_t bits = 0;
    plist_get_uint_val(item, &bits);
    return static_cast<std::int64_t>(bits); // libplist returns a negative number as its two's complement
}

double realIn(plist_t item) {
    double value = 0;
    plist_get_real_val(item, &value);
    return value;
}

bool booleanIn(plist_t item) {
    std::uint8_t value = 0;
    plist_get_bool_val(item, &value);
    return value != 0;
}

/// A newer libplist has a call for signed numbers; given a negative number through the unsigned call, it
/// writes a large one. An older libplist has only the unsigned call.
plist_t newInteger(std::signed_integral auto value) {
    if constexpr (requires { plist_new_int(value); }) {
        return plist_new_int(value);
    } else {
        return plist_new_uint(static_cast<std::uint64_t>(value));
    }
}

std::string textIn(plist_t item) {
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(item, &length);
    return text == nullptr ? std::string() : std::string(text, length);
}

bool meansYes(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.starts_with('+') || text.starts_with('-')) {
        text.remove_prefix(1);
    }
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    constexpr std::string_view yes = "YyTt123456789";
    return !text.empty() && yes.find(text.front()) != std::string_view::npos;
}

std::int32_t cut(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    return static_cast<std::int32_t>(std::clamp<double>(value, Limits::min(), Limits::max()));
}

std::string textOf(double value) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    return {digits.data(), end.ptr};
}

/// libplist's XML as it is.
std::string plainXML(plist_t item) {
    char* xml = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(item, &xml, &length);
    const std::unique_ptr<char, decltype(&plist_to_xml_free)> owner(xml, &plist_to_xml_free);
    return xml == nullptr ? std::string() : std::string(xml, length);
}

/// Replaces control characters, which libplist writes unescaped, by character references, because an XML
/// reader would change (a carriage return) or refuse them. Outside the values libplist writes no such
/// character.
void appendWithReferences(std::string& text, std::string_view part) {
    for (const char character : part) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 && character != '\n' && character != '\t') {
            text += "&#" + std::to_string(byte) + ";";
        } else {
            text += character;
        }
    }
}

/// libplist's output, corrected where a different reader would read a different value.
std::string mendedXML(std::string_view xml) {
    constexpr std::string_view date = "<date>"; // never inside a string, where "<" is written "&lt;"
    constexpr std::size_t yearDigits = 4;
    std::string text;
    text.reserve(xml.size());
    while (!xml.empty()) {
        const std::size_t found = xml.find(date);
        const std::size_t end = found == std::string_view::npos ? xml.size() : found + date.size();
        appendWithReferences(text, xml.substr(0, end));
        xml.remove_prefix(end);
        const std::size_t digits = std::min(xml.find_first_not_of("0123456789"), xml.size());
        if (found != std::string_view::npos && digits > 0 && digits < yearDigits) {
            text.append(yearDigits - digits, '0'); // libplist leaves out a year's leading zeros
        }
    }
    return text;
}

/// The text of a file for libplist's XML.
std::string fileText(std::string_view xml) {
    std::string text = mendedXML(xml);
    if (!text.ends_with('\n')) {
        text += '\n';
    }
    return text;
}

/// Returns null when the text is not a property list in XML, or is too long for libplist.
plist_t readXML(std::string_view text) {
    plist_t read = nullptr;
    if (text.find('\0') == std::string_view::npos &&
        text.size() <= std::numeric_limits<std::uint32_t>::max()) {
        plist_from_xml(text.data(), static_cast<std::uint32_t>(text.size()), &read);
    }
    return read;
}

/// Reads what was read (or null) once more, from the XML that will be written for it, so that what XML cannot
/// hold is refused or settled here. Takes `read` over.
plist_t readAsWritten(plist_t read) {
    const std::unique_ptr<void, Free> owner(read);
    const std::string xml = read == nullptr ? std::string() : plainXML(read);
    return xml.find('\0') == std::string::npos ? readXML(mendedXML(xml)) : nullptr;
}

/// A binary list may have a NUL in a key, at which libplist stops, or the same key twice.
plist_t readBinary(std::string_view bytes) {
    plist_t read = nullptr;
    plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &read);
    return readAsWritten(read);
}

/// Returns null when the bytes are not a property list.
plist_t readAny(std::string_view bytes) {
    if (bytes.starts_with(binaryMagic)) {
        return readBinary(bytes);
    }
    const auto text = propertyListTextAsUTF8(bytes);
    const std::size_t start = text ? text->find_first_not_of(" \t\r\n") : std::string::npos;
    if (start == std::string::npos || (*text)[start] != '<') {
        return text ? readOldStylePropertyList(*text) : nullptr;
    }
    plist_t read = readXML(*text);
    // libplist takes a malformed date for one before the year 0, and writes that so that it reads another.
    return text->find("<date") == std::string::npos ? read : readAsWritten(read);
}

/// The string for a scalar, `yes` or `no` for a boolean; none for other types.
std::optional<std::string> singleText(plist_t item, const char* yes, const char* no) {
    switch (plist_get_node_type(item)) {
    case PLIST_BOOLEAN:
        return booleanIn(item) ? yes : no;
    case PLIST_UINT:
        return std::to_string(integerIn(item));
    case PLIST_REAL:
        return textOf(realIn(item));
    case PLIST_STRING:
        return textIn(item);
    default:
        return std::nullopt;
    }
}

std::string shownText(plist_t item) {
    if (const auto text = singleText(item, "true", "false")) {
        return *text;
    }
    return plainXML(item);
}

void appendValues(plist_t dictionary, const std::string& prefix,
                  std::vector<std::pair<std::string, std::string>>* all) {
    plist_dict_iter started = nullptr;
    plist_dict_new_iter(dictionary, &started);
    const std::unique_ptr<void, decltype(&std::free)> iterator(started, &std::free);
    while (true) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(dictionary, started, &key, &item);
        const std::unique_ptr<char, decltype(&std::free)> owner(key, &std::free);
        if (item == nullptr) {
            return;
        }
        if (plist_get_node_type(item) == PLIST_DICT) {
            appendValues(item, prefix + key + ".", all);
        } else {
            all->emplace_back(prefix + key, shownText(item));
        }
    }
}

} // namespace

/// A dictionary inside a property list, which it shares ownership of.
struct NSMutableDictionary::Node {
    std::shared_ptr<void> root;
    plist_t dictionary;

    [[nodiscard]] plist_t item(const std::string& key) const {
        return plist_dict_get_item(dictionary, key.c_str());
    }

    /// libplist replaces a value in place, so the order of the keys does not change.
    void set(plist_t value, const std::string& key) const {
        plist_dict_set_item(dictionary, key.c_str(), value);
    }
};

NSMutableDictionary::NSMutableDictionary() {
    std::shared_ptr<void> root(plist_new_dict(), Free());
    node_ = std::make_shared<Node>(Node{root, root.get()});
}

std::optional<NSMutableDictionary>
NSMutableDictionary::dictionaryWithContentsOfFile(const std::string& path) {
    const auto contents = contentsOfFile(path);
    return contents.isOk() ? dictionaryWithData(*contents) : std::nullopt;
}

std::optional<NSMutableDictionary> NSMutableDictionary::dictionaryWithData(std::string_view bytes) {
    if (bytes.empty() || bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
        return std::nullopt;
    }
    const plist_t read = readAny(bytes);
    std::shared_ptr<void> root(read, Free());
    if (!read || plist_get_node_type(read) != PLIST_DICT) {
        return std::nullopt;
    }
    return NSMutableDictionary(std::make_shared<Node>(Node{root, read}));
}

bool NSMutableDictionary::hasKey(const std::string& key) const {
    return node_->item(key) != nullptr;
}

bool NSMutableDictionary::boolForKey(const std::string& key) const {
    const plist_t item = node_->item(key);
    switch (plist_get_node_type(item)) {
    case PLIST_BOOLEAN:
        return booleanIn(item);
    case PLIST_UINT:
        return integerIn(item) != 0;
    case PLIST_REAL:
        return realIn(item) != 0;
    case PLIST_STRING:
        return meansYes(textIn(item));
    default:
        return false;
    }
}

std::int32_t NSMutableDictionary::intForKey(const std::string& key) const {
    const plist_t item = node_->item(key);
    switch (plist_get_node_type(item)) {
    case PLIST_BOOLEAN:
        return booleanIn(item) ? 1 : 0;
    case PLIST_UINT:
        return static_cast<std::int32_t>(
            std::clamp<std::int64_t>(integerIn(item), Limits::min(), Limits::max()));
    case PLIST_REAL:
        return cut(realIn(item));
    case PLIST_STRING:
        return intValue(textIn(item));
    default:
        return 0;
    }
}

std::optional<std::string> NSMutableDictionary::stringForKey(const std::string& key) const {
    return singleText(node_->item(key), "1", "0");
}

std::optional<NSMutableDictionary> NSMutableDictionary::dictionaryForKey(const std::string& key) const {
    const plist_t item = node_->item(key);
    if (plist_get_node_type(item) != PLIST_DICT) {
        return std::nullopt;
    }
    return NSMutableDictionary(std::make_shared<Node>(Node{node_->root, item}));
}

void NSMutableDictionary::setBool(bool value, const std::string& key) {
    node_->set(plist_new_bool(value ? 1 : 0), key);
}

void NSMutableDictionary::setInt(std::int64_t value, const std::string& key) {
    node_->set(newInteger(value), key);
}

void NSMutableDictionary::setString(const std::string& value, const std::string& key) {
    const plist_t item = node_->item(key);
    if (plist_get_node_type(item) == PLIST_STRING && textIn(item) == value) {
        return; // an unchanged value keeps its bytes, even those that are not valid XML
    }
    // Strict readers refuse a whole list for one character that XML does not allow, and libplist ends a
    // string at a NUL.
    node_->set(plist_new_string(stringForXML(value).c_str()), key);
}

NSMutableDictionary NSMutableDictionary::copy() const {
    const std::shared_ptr<void> root(plist_copy(node_->dictionary), Free());
    return NSMutableDictionary(std::make_shared<Node>(Node{root, root.get()}));
}

std::vector<std::pair<std::string, std::string>> NSMutableDictionary::values() const {
    std::vector<std::pair<std::string, std::string>> all;
    appendValues(node_->dictionary, "", &all);
    return all;
}

std::string NSMutableDictionary::xmlText() const {
    const std::string xml = plainXML(node_->dictionary);
    if (xml.empty()) {
        throw std::runtime_error("a property list could not be written as XML");
    }
    return fileText(xml);
}

platform::Status NSMutableDictionary::writeToFile(const std::string& path) const {
    const std::string xml = plainXML(node_->dictionary);
    return xml.empty() ? platform::Status::failure("cannot write", path, "its content has no form as XML")
                       : writeToFileAtomically(path, fileText(xml));
}
