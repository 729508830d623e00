// smb.conf, read and written whole: what was written reads as it was written.

#include "Fuzz.h"
#include "model/SMBConf.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static platform::Host host(fuzz::quietServices());
    const auto read = SMBConf::ofText(std::string(fuzz::textOf(data, size)));
    const std::string written = read->writtenText();
    const auto again = SMBConf::ofText(written);
    fuzz::require(again->writtenText() == written, "a second write is equal to the first", written);
    fuzz::require(SMBConf::ofText(written)->copy()->writtenText() == written, "a copy is written alike");
    return 0;
}
