// Property lists: what was read, written and read again is the same list.

#include "Fuzz.h"
#include "platform/foundation/NSDictionary.h"

#include <algorithm>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto read = NSMutableDictionary::dictionaryWithData(fuzz::textOf(data, size));
    if (!read) {
        return 0;
    }
    const std::string written = read->xmlText();
    const auto again = NSMutableDictionary::dictionaryWithData(written);
    fuzz::require(again.has_value(), "what was written can be read", written);
    const auto values = read->values();
    const auto valuesAgain = again->values();
    const auto [one, other] = std::ranges::mismatch(values, valuesAgain);
    fuzz::require(one == values.end() && other == valuesAgain.end(), "what was written is what was read",
                  one == values.end() ? written : one->first + ": " + one->second);
    fuzz::require(again->xmlText() == written, "a second write is equal to the first", written);
    NSMutableDictionary changed = read->copy();
    changed.setString("text", "new key");
    changed.setInt(-1, "number");
    const auto withChanges = NSMutableDictionary::dictionaryWithData(changed.xmlText());
    fuzz::require(withChanges && withChanges->stringForKey("new key") == "text" &&
                      withChanges->intForKey("number") == -1,
                  "what was set is read", written);
    return 0;
}
