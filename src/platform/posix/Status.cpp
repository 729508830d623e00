#include "platform/posix/Status.h"

#include <cerrno>
#include <system_error>

namespace platform {

Status Status::failure(std::string what, std::string on, std::string why) {
    Status status;
    status.failure_ = Failure{std::move(what), std::move(on), std::move(why), 0};
    return status;
}

Status Status::ofErrno(std::string what, std::string on, int error) {
    // The system's text speaks of a connection, but this is mostly said of a program.
    std::string why =
        error == ETIMEDOUT ? "it did not answer in time" : std::generic_category().message(error);
    Status status = failure(std::move(what), std::move(on), std::move(why));
    status.failure_->error = error;
    return status;
}

std::string Status::text() const {
    if (!failure_) {
        return {};
    }
    const std::string subject = failure_->on.empty() ? std::string() : " " + failure_->on;
    return failure_->what + subject + ": " + failure_->why;
}

std::string_view Status::why() const {
    return failure_ ? std::string_view(failure_->why) : std::string_view();
}

} // namespace platform
