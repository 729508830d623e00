#include "platform/security/Authorization.h"

#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"

#include <array>
#include <cerrno>
#include <memory>
#include <utility>

#include <sys/types.h>
#include <unistd.h>

namespace {

/// The source of a run's stream: the tool's output as it arrives, also kept for the presenter, who is told of
/// it once the caller has read to the end.
class ToolOutput {
  public:
    explicit ToolOutput(int descriptor) : descriptor_(descriptor) {}

    ~ToolOutput() {
        ::close(descriptor_);
        platform::Host::current().authority().outputHasEnded();
    }

    ToolOutput(const ToolOutput&) = delete;
    ToolOutput& operator=(const ToolOutput&) = delete;

    [[nodiscard]] ssize_t read(char* buffer, std::size_t size) {
        ssize_t count = 0;
        do {
            count = ::read(descriptor_, buffer, size);
        } while (count < 0 && errno == EINTR);
        if (count > 0) {
            seen_.append(buffer, static_cast<std::size_t>(count));
        } else if (!seen_.empty()) {
            platform::Host::current().presenter().toolDidWrite(std::exchange(seen_, {}));
        }
        return count;
    }

    [[nodiscard]] static std::FILE* openStream(int descriptor) {
        auto output = std::make_unique<ToolOutput>(descriptor);
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
            static_cast<void>(output.release()); // the stream's close frees it
        }
        return stream;
    }

  private:
    int descriptor_;
    std::string seen_;
};

/// `arguments` with the secret one masked.
std::vector<std::string> shownArguments(std::span<const std::string> arguments,
                                        std::optional<std::size_t> secretArgument) {
    std::vector<std::string> shown;
    shown.reserve(arguments.size());
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        shown.push_back(index == secretArgument ? "********" : arguments[index]);
    }
    return shown;
}

} // namespace

OSStatus AuthorizationCreate(const AuthorizationRights& rights, AuthorizationFlags flags,
                             AuthorizationRef* authorization) {
    platform::Authority& authority = platform::Host::current().authority();
    OSStatus status = errAuthorizationSuccess;
    auto session = authority.createSession(&status);
    if (!session) {
        return status != errAuthorizationSuccess ? status : errAuthorizationInvalidRef;
    }
    if (!rights.empty()) {
        status = authority.copyRights(*session, rights, flags);
        if (status != errAuthorizationSuccess) {
            return status;
        }
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
    platform::Host& host = platform::Host::current();
    host.presenter().toolWillRun(tool, shownArguments(arguments, secretArgument));
    int descriptor = -1;
    const OSStatus status =
        host.authority().execute(*authorization, tool, arguments, stream != nullptr ? &descriptor : nullptr);
    if (status != errAuthorizationSuccess || stream == nullptr) {
        return status;
    }
    *stream = ToolOutput::openStream(descriptor);
    return *stream != nullptr ? errAuthorizationSuccess : errAuthorizationToolExecuteFailure;
}
