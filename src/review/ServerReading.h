#pragma once

#include "model/SMBConf.h"

#include <string>
#include <vector>

namespace review {

/// A setting that the server reads differently from what the window shows.
struct OtherReading {
    const SMBShare* section = nullptr;
    std::string sentence;
};

[[nodiscard]] std::vector<OtherReading> otherReadings(const SMBConf& conf);

} // namespace review
