// The words of a script: a word reads the same after quoting, and every text can be quoted.

#include "Fuzz.h"
#include "frontends/script/ScriptWords.h"

namespace {

using Words = std::vector<std::string>;

void requireReadable(const std::string& word) {
    fuzz::require(frontend::splitScriptLine(frontend::quotedText(word)) == Words{word},
                  "a quoted text reads as itself", word);
    const std::string shown = frontend::scriptWord(word);
    const bool isBare = shown == word;
    // A bare word of the output may contain "#", which begins a comment in a script.
    fuzz::require((isBare && word.find('#') != std::string::npos) ||
                      frontend::splitScriptLine(shown) == Words{word},
                  "a word reads as itself", word);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(fuzz::textOf(data, size));
    requireReadable(text);
    try {
        std::string line;
        const Words words = frontend::splitScriptLine(text);
        for (const std::string& word : words) {
            requireReadable(word);
            line += frontend::quotedText(word) + " ";
        }
        fuzz::require(frontend::splitScriptLine(line) == words, "words read as themselves", line);
    } catch (const frontend::ScriptSyntaxError&) {
        return 0; // no such line
    }
    return 0;
}
