#pragma once

#include <cstdio>
#include <memory>

namespace platform {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A stream that is closed when its owner is destroyed.
using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;

} // namespace platform
