#pragma once

#include "platform/foundation/Host.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include <unistd.h>

// What the targets in this folder have in common. A target is one function. libFuzzer calls it with inputs
// that it generates (scripts/fuzz), and the test of its corpus calls it with the stored inputs
// (run_corpus.cpp).

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Ends the program when a promise is broken, so that the fuzzer keeps the input.
inline void require(bool isKept, const char* promise, std::string_view detail = "") {
    if (!isKept) {
        std::fprintf(stderr, "BROKEN: %s\n", promise);
        std::fwrite(detail.data(), 1, detail.size(), stderr); // a NUL in it is no end
        std::fputc('\n', stderr);
        std::abort();
    }
}

/// Splits an input into numbers and texts.
class Draw {
  public:
    explicit Draw(std::string_view bytes) : rest_(bytes) {}

    [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }

    /// Returns a number below `limit`, which is at most 256; 0 at the end of the input.
    [[nodiscard]] std::size_t below(std::size_t limit) {
        const std::string_view byte = take(1);
        return byte.empty() ? 0 : static_cast<unsigned char>(byte.front()) % limit;
    }

    /// Returns one of the choices.
    template <std::size_t Size>
    [[nodiscard]] std::string_view oneOf(const std::array<std::string_view, Size>& choices) {
        return choices.at(below(Size));
    }

    /// Returns the text up to the next separator, which is skipped, or up to the end.
    [[nodiscard]] std::string upTo(char separator) {
        const std::string_view text = take(rest_.find(separator));
        static_cast<void>(take(1));
        return std::string(text);
    }

    [[nodiscard]] std::string_view rest() { return take(rest_.size()); }

  private:
    [[nodiscard]] std::string_view take(std::size_t size) {
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest_;
};

/// A folder that is removed with the object.
class ScratchFolder {
  public:
    ScratchFolder() : path_((std::filesystem::temp_directory_path() / "brindle-fuzz-XXXXXX").string()) {
        require(::mkdtemp(path_.data()) != nullptr, "a scratch folder can be made");
    }

    ~ScratchFolder() {
        std::error_code ignored; // the system cleans its temporary folder anyway
        std::filesystem::remove_all(path_, ignored);
    }

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] std::string file(const char* name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

inline void writeFile(const std::string& file, std::string_view bytes) {
    std::ofstream out(file, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    require(out.flush().good(), "a scratch file can be written");
}

class QuietLog : public platform::Log {
  public:
    void write(std::string_view /*text*/) override {}
};

/// Paths without any mapping, and without a home folder.
class PlainPaths : public platform::Paths {
  public:
    [[nodiscard]] std::string map(const std::string& path) const override { return path; }

    [[nodiscard]] std::string home() const override { return "/nonexistent"; }

    [[nodiscard]] std::string defaultsFile() const override { return "/nonexistent/defaults"; }

    [[nodiscard]] std::string resources() const override { return BRINDLE_RESOURCES; }
};

/// Returns the services of a host that does nothing.
inline platform::Services quietServices() {
    platform::Services services;
    services.log = std::make_shared<QuietLog>();
    services.paths = std::make_shared<PlainPaths>();
    return services;
}

} // namespace fuzz
