#pragma once

#include <span>
#include <string>
#include <string_view>

namespace review {

/// Whether `output`, which a run has written, says that it failed. A share that stands only in smb.conf has
/// no record: that its deletion finds none is no failure, because nothing is left to do.
[[nodiscard]] bool meansFailure(std::string_view tool, std::span<const std::string> arguments,
                                std::string_view output);

} // namespace review
