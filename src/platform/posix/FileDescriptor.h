#pragma once

#include <utility>

#include <unistd.h>

namespace platform {

/// Owns a file descriptor; -1 is none.
class FileDescriptor {
  public:
    FileDescriptor() = default;

    explicit FileDescriptor(int value) : value_(value) {}

    ~FileDescriptor() { reset(); }

    FileDescriptor(FileDescriptor&& other) noexcept : value_(other.release()) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            reset();
            value_ = other.release();
        }
        return *this;
    }

    [[nodiscard]] int get() const { return value_; }

    [[nodiscard]] bool isOpen() const { return value_ >= 0; }

    [[nodiscard]] int release() { return std::exchange(value_, -1); }

    void reset() {
        if (const int value = release(); value >= 0) {
            ::close(value);
        }
    }

  private:
    int value_ = -1;
};

} // namespace platform
