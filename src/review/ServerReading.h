#pragma once

#include "model/SMBConf.h"

#include <string>
#include <vector>

namespace review {

/// A place where the window shows something else than the server does.
struct OtherReading {
    const SMBShare* section = nullptr;
    std::string sentence;
};

[[nodiscard]] std::vector<OtherReading> otherReadings(const SMBConf& conf);

} // namespace review
