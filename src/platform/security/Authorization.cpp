#include "platform/security/Authorization.h"

#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"

#include <memory>
#include <utility>

namespace {

/// Serves a tool's output as a stream. When the caller has read to the end, the presenter is told of the
/// output.
class ToolOutput {
  public:
    explicit ToolOutput(std::string text) : text_(std::move(text)) {}

    [[nodiscard]] ssize_t read(char* buffer, std::size_t size) {
        const std::size_t count = text_.copy(buffer, size, position_);
        position_ += count;
        if (count == 0 && !text_.empty()) {
            platform::Host::current().presenter().toolDidWrite(std::exchange(text_, {}));
            position_ = 0;
        }
        return static_cast<ssize_t>(count);
    }

    [[nodiscard]] static std::FILE* openStream(std::string text) {
        auto output = std::make_unique<ToolOutput>(std::move(text));
        cookie_io_functions_t functions{};
        functions.read = [](void* cookie, char* buffer, std::size_t size) {
            return static_cast<ToolOutput*>(cookie)->read(buffer, size);
        };
        functions.close = [](void* cookie) {
            const std::unique_ptr<ToolOutput> closed(static_cast<ToolOutput*>(cookie));
            return 0;
        };
        std::FILE* stream = ::fopencookie(output.get(), "r", functions);
        if (stream != nullptr) {
            static_cast<void>(output.release()); // closing the stream frees it
        }
        return stream;
    }

  private:
    std::string text_;
    std::size_t position_ = 0; ///< where the next read starts
};

/// Tells the presenter of a run, with the secret argument masked.
void announce(const std::string& tool, std::span<const std::string> arguments,
              std::optional<std::size_t> secretArgument) {
    platform::Presenter& presenter = platform::Host::current().presenter();
    if (!secretArgument) {
        presenter.toolWillRun(tool, arguments);
        return;
    }
    std::vector<std::string> shown;
    shown.reserve(arguments.size());
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        shown.push_back(index == secretArgument ? "********" : arguments[index]);
    }
    presenter.toolWillRun(tool, shown);
}

} // namespace

OSStatus AuthorizationCreate(const AuthorizationRights& /*rights*/, AuthorizationFlags /*flags*/,
                             AuthorizationRef* authorization) {
    platform::Authority& authority = platform::Host::current().authority();
    OSStatus status = errAuthorizationSuccess;
    auto session = authority.createSession(&status);
    if (!session) {
        return status != errAuthorizationSuccess ? status : errAuthorizationInvalidRef;
    }
    *authorization = session.release();
    return errAuthorizationSuccess;
}

OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights& rights,
                                 AuthorizationFlags flags, AuthorizationRights** authorized) {
    if (authorization == nullptr) {
        return errAuthorizationInvalidRef;
    }
    const OSStatus status = platform::Host::current().authority().copyRights(*authorization, rights, flags);
    if (status == errAuthorizationSuccess && authorized != nullptr) {
        *authorized = std::make_unique<AuthorizationRights>(rights).release();
    }
    return status;
}

OSStatus AuthorizationFreeItemSet(AuthorizationItemSet* set) {
    const std::unique_ptr<AuthorizationItemSet> freed(set);
    return errAuthorizationSuccess;
}

OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags) {
    if (authorization == nullptr) {
        return errAuthorizationInvalidRef;
    }
    const std::unique_ptr<platform::AuthorizationSession> session(authorization);
    if ((flags & kAuthorizationFlagDestroyRights) != 0) {
        platform::Host::current().authority().destroyRights(*session);
    }
    return errAuthorizationSuccess;
}

OSStatus AuthorizationExecuteWithPrivileges(AuthorizationRef authorization, const std::string& tool,
                                            AuthorizationFlags /*options*/,
                                            std::span<const std::string> arguments, std::FILE** stream,
                                            std::optional<std::size_t> secretArgument) {
    if (authorization == nullptr) {
        return errAuthorizationInvalidRef;
    }
    announce(tool, arguments, secretArgument);
    std::string output;
    const OSStatus status = platform::Host::current().authority().execute(
        *authorization, tool, arguments, stream != nullptr ? &output : nullptr);
    if (status != errAuthorizationSuccess || stream == nullptr) {
        return status;
    }
    *stream = ToolOutput::openStream(std::move(output));
    return *stream != nullptr ? errAuthorizationSuccess : errAuthorizationToolExecuteFailure;
}
