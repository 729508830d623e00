#include "platform/security/HelperSession.h"

#include "platform/foundation/Host.h"
#include "platform/foundation/NSLog.h"
#include "platform/posix/Secret.h"
#include "platform/security/HelperProtocol.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr int tryAgain = 20; // milliseconds

/// Waits until `descriptor` can be read. Returns false when `deadline` passes first.
bool isReadableBy(int descriptor, std::chrono::steady_clock::time_point deadline) {
    int ready = 0;
    do {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd waiting{descriptor, POLLIN, 0};
        ready = ::poll(&waiting, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
    } while (ready < 0 && errno == EINTR);
    return ready != 0;
}

} // namespace

HelperSession::HelperSession(std::vector<std::string> command, std::chrono::milliseconds patience,
                             std::chrono::milliseconds answerLimit)
    : command_(std::move(command)), patience_(patience), answerLimit_(answerLimit) {}

HelperSession::~HelperSession() {
    end();
}

OSStatus HelperSession::run(const std::string& tool, std::span<const std::string> arguments,
                            std::string* output) {
    auto frame = isGivenUp_ ? std::nullopt : helperRequest(tool, arguments, frameHeaderSize);
    if (!frame) {
        return errAuthorizationToolExecuteFailure;
    }
    frame->replace(0, frameHeaderSize, frameHeader(frame->size() - frameHeaderSize));
    wasDenied_ = false;
    letGoIdle(); // only here, so that changes that one helper holds are never settled with another
    auto answer = ask(*frame);
    wipe(*frame);
    if (!answer.isOk() && !wasDenied_ && !isGivenUp_ && Host::currentIfAny() != nullptr) {
        NSLog("%@", answer.status().text()); // the caller only gets a status code
    }
    if (!answer.isOk() || !*answer) {
        return wasDenied_ ? errAuthorizationDenied : errAuthorizationToolExecuteFailure;
    }
    // On the system host each run is committed at once.
    const bool isLasting = std::ranges::find(command_, "--system") != command_.end();
    holdsChanges_ = holdsChanges_ || (!isLasting && waitsForCommit(tool));
    hasFailed_ = hasFailed_ || (*answer)->status != 0;
    if (output != nullptr) {
        *output = std::move((*answer)->output);
    }
    return errAuthorizationSuccess;
}

Status HelperSession::startWith(const std::vector<std::string>& command) {
    auto started = startHelper(command);
    if (started.isOk()) {
        helper_ = std::move(*started);
        lastAsked_ = std::chrono::steady_clock::now();
    }
    return started.status();
}

Status HelperSession::start(const std::vector<std::string>& command, std::string_view firstInput) {
    end();
    if (Status status = startWith(command); !status.isOk()) {
        return status;
    }
    std::string first;
    first.reserve(firstInput.size() + frameHeaderSize);
    first.append(firstInput).append(frameHeader(0)); // an empty commit shows that the helper is there
    const auto answer = ask(first);
    wipe(first);
    return answer.isOk() && *answer ? Status() : answer.status();
}

Status HelperSession::settle() {
    if (std::exchange(holdsChanges_, false)) {
        const auto answer = ask(frameHeader(0));
        if (!answer.isOk()) {
            lost_ = answer.status().text();
        } else if (!*answer || (*answer)->status != 0) {
            lost_ = *answer ? (*answer)->output : "the helper refuses to save them";
        }
    }
    const std::string lost = std::exchange(lost_, {});
    return lost.empty() ? Status() : Status::failure("cannot keep", "what was changed", lost);
}

void HelperSession::endAction() {
    isGivenUp_ = false;
    if (std::exchange(hasFailed_, false)) {
        letGo(); // it may have waited in vain for the directory, and would not wait for it again
    }
}

void HelperSession::end() {
    endAction();
    letGo();
}

void HelperSession::letGoIdle() {
    if (!helper_ || holdsChanges_) {
        return; // settle() reports what becomes of its changes
    }
    // A helper that waits for the next run writes nothing.
    pollfd output{helper_->output.get(), POLLIN, 0};
    const bool hasEnded = ::poll(&output, 1, 0) > 0;
    if (hasEnded || std::chrono::steady_clock::now() - lastAsked_ > helperIdleLimit - patience_) {
        letGo();
    }
}

void HelperSession::letGo() {
    holdsChanges_ = false;
    std::erase_if(abandoned_, [](pid_t process) { return ::waitpid(process, nullptr, WNOHANG) != 0; });
    static_cast<void>(collect()); // its output has been read already
}

std::optional<int> HelperSession::collect() {
    if (!helper_) {
        return std::nullopt;
    }
    ChildProcess helper = *std::exchange(helper_, std::nullopt);
    helper.input.reset(); // the end of its input tells the helper to end
    const FileDescriptor end = openProcess(helper.id);
    const bool isLate =
        end.isOpen() && !isReadableBy(end.get(), std::chrono::steady_clock::now() + patience_);
    if (isLate && ::kill(helper.id, SIGKILL) != 0 && errno == EPERM) {
        abandoned_.push_back(helper.id);
        return std::nullopt;
    }
    const auto status = waitForProcess(helper.id);
    return status.isOk() ? std::optional(*status) : std::nullopt;
}

void HelperSession::giveUp() {
    // A helper that continues later must do nothing. If sudo has started it as root, it cannot be killed, but
    // it ends because it cannot write its first byte.
    if (helper_ && ::kill(helper_->id, SIGKILL) != 0 && errno == EPERM) {
        abandoned_.push_back(helper_->id);
        helper_.reset();
    }
    if (std::exchange(holdsChanges_, false)) {
        lost_ = "the helper has ended too early; try again";
    }
    letGo();
}

Result<std::optional<HelperSession::Answer>> HelperSession::ask(std::string_view frame) {
    const IgnoredBrokenPipe ignored;
    lastAsked_ = std::chrono::steady_clock::now();
    if (!helper_) {
        if (Status status = startWith(command_); !status.isOk()) {
            return status;
        }
    }
    const HelperStart start = handOver(*helper_, frame, patience_);
    answerBy_ = std::chrono::steady_clock::now() + answerLimit_;
    if (start == HelperStart::Refused) {
        return std::optional<Answer>();
    }
    if (start == HelperStart::Started && !isAnswered()) {
        isGivenUp_ = true;
        giveUp();
        return Status::failure("cannot wait for", command_.front(), "it was given up");
    }
    auto answer = start == HelperStart::Started
                      ? readAnswer()
                      : Result<Answer>(Status::failure("cannot talk to", command_.front(), "try again"));
    if (!answer.isOk()) {
        if (start == HelperStart::Ended) {
            // sudo's status when it refuses. The helper itself ends with another status before it has
            // started.
            wasDenied_ = collect() == 1;
        }
        giveUp();
        return answer.status();
    }
    return std::optional(std::move(*answer));
}

Result<HelperSession::Answer> HelperSession::readAnswer() {
    unread_ = {};
    std::string header(frameHeaderSize, '\0');
    Status status = read(header);
    Answer answer;
    if (status.isOk() && frameSize(header) > maximumHelperAnswer) {
        status = Status::failure("cannot talk to", command_.front(), "its answer is larger than 64 MiB");
    }
    if (status.isOk()) {
        answer.output.resize(frameSize(header));
        status = read(answer.output);
    }
    char exitStatus = 0;
    if (status.isOk()) {
        status = read(std::span(&exitStatus, 1));
    }
    answer.status = static_cast<unsigned char>(exitStatus);
    return status.isOk() ? Result<Answer>(std::move(answer)) : status;
}

bool HelperSession::isAnswered() const {
    const Host* host = Host::currentIfAny();
    const auto patience = host == nullptr ? nullptr : host->services().patience;
    const auto since = std::chrono::steady_clock::now();
    bool isAnswered = true;
    const auto isSilent = [&] {
        pollfd answer{helper_->output.get(), POLLIN, 0};
        const int ready = ::poll(&answer, 1, tryAgain);
        return ready == 0 || (ready < 0 && errno == EINTR);
    };
    while (patience && std::chrono::steady_clock::now() < answerBy_ && isSilent()) {
        const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - since;
        isAnswered = patience->keepWaiting(waited.count());
        if (!isAnswered) {
            break;
        }
    }
    if (patience) {
        patience->waitHasEnded();
    }
    return isAnswered;
}

Status HelperSession::read(std::span<char> bytes) {
    while (!bytes.empty()) {
        if (unread_.empty()) {
            if (!isReadableBy(helper_->output.get(), answerBy_)) {
                return Status::failure("cannot talk to", command_.front(),
                                       "it has not answered in time; try again");
            }
            const ssize_t count = ::read(helper_->output.get(), received_.data(), received_.size());
            if (count == 0) {
                return Status::failure("cannot talk to", command_.front(), "it has ended; try again");
            }
            if (count < 0 && errno != EINTR) {
                return Status::ofErrno("cannot talk to", command_.front(), errno);
            }
            unread_ = std::span(received_).first(count < 0 ? 0 : static_cast<std::size_t>(count));
        }
        const std::size_t taken = std::min(unread_.size(), bytes.size());
        std::ranges::copy(unread_.first(taken), bytes.begin());
        unread_ = unread_.subspan(taken);
        bytes = bytes.subspan(taken);
    }
    return {};
}

} // namespace platform
