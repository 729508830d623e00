#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include <cstdlib>

/// A new folder for a benchmark, removed with the object.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "brindle-benchmark-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder can be made: " + pattern);
        }
        path_ = pattern;
    }

    ~TemporaryFolder() {
        std::error_code ignored; // the system cleans its temporary folder anyway
        std::filesystem::remove_all(path_, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};
