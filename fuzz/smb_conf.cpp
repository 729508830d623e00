// smb.conf, read and written whole: the written text reads the same again. Two things may read differently.
// When a write has lost lines, and said so, a comment may join a commented-out section that the lines
// separated it from. And text after a bracket in a commented-out section looks like a header.

#include "Fuzz.h"
#include "model/SMBConf.h"

#include <algorithm>

namespace {

bool beginsWithBracket(const SMBPair& pair) {
    return pair.Name.view().starts_with('[');
}

bool isPlain(const SMBConf& conf) {
    return conf.lossNotices().empty() && std::ranges::none_of(conf.Entries(), [](const auto& entry) {
               return std::ranges::any_of(entry->Props(), beginsWithBracket);
           });
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static platform::Host host(fuzz::quietServices());
    const auto read = SMBConf::ofText(std::string(fuzz::textOf(data, size)));
    const std::string written = read->writtenText();
    fuzz::require(read->copy()->writtenText() == written, "a copy is written alike", written);
    const auto again = SMBConf::ofText(written);
    fuzz::require(!isPlain(*read) || again->writtenText() == written, "a second write is equal to the first",
                  written);
    return 0;
}
