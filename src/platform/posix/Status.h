#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace platform {

/// The outcome of an operation that can fail in ordinary ways: success, or what failed, on what, and why. All
/// of our own code reports failures in this form, except operations that return a code (an OSStatus, or that
/// of writeSMBConfFile).
class [[nodiscard]] Status {
  public:
    /// Success.
    Status() = default;

    /// `what` is a verb phrase ("cannot write"), `on` the file, record or program concerned (may be empty),
    /// `why` the reason and, if something can be done about it, what to do.
    [[nodiscard]] static Status failure(std::string what, std::string on, std::string why);
    /// The same for a failed system call; `error` is errno's value.
    [[nodiscard]] static Status ofErrno(std::string what, std::string on, int error);

    [[nodiscard]] bool isOk() const { return !failure_; }

    /// "cannot write /etc/smb.conf: No space left on device". Empty for success.
    [[nodiscard]] std::string text() const;
    /// Only the reason. Empty for success.
    [[nodiscard]] std::string_view why() const;

    /// errno's value when a system call failed, otherwise 0.
    [[nodiscard]] int systemError() const { return failure_ ? failure_->error : 0; }

  private:
    struct Failure {
        std::string what;
        std::string on;
        std::string why;
        int error = 0;
    };

    std::optional<Failure> failure_;
};

/// A value, or why there is none.
template <class T>
class [[nodiscard]] Result {
  public:
    // Implicit, so that a function can return a value or a Status directly.
    Result(T value) : value_(std::move(value)) {} // NOLINT(google-explicit-constructor)

    Result(Status failure) : status_(std::move(failure)) {} // NOLINT(google-explicit-constructor)

    [[nodiscard]] bool isOk() const { return value_.has_value(); }

    [[nodiscard]] const Status& status() const { return status_; }

    // Only for a result that is ok.
    [[nodiscard]] T& operator*() { return *value_; }

    [[nodiscard]] const T& operator*() const { return *value_; }

    [[nodiscard]] T* operator->() { return &*value_; }

    [[nodiscard]] const T* operator->() const { return &*value_; }

    /// The value, or `other` when there is none.
    [[nodiscard]] T valueOr(T other) const& { return value_.value_or(std::move(other)); }

    [[nodiscard]] T valueOr(T other) && { return std::move(value_).value_or(std::move(other)); }

  private:
    std::optional<T> value_;
    Status status_;
};

} // namespace platform
