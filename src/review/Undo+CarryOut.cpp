#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/posix/WholeFile.h"
#include "privileged/NiutilTask.h"
#include "review/Undo.h"

namespace review {

namespace systempath = platform::systempath;

namespace {

using platform::Status;

std::string cannotTakeBack() {
    return NSLocalizedString("cannot take it all back");
}

Status failedRun(const PlannedRun& run) {
    return Status::failure(
        cannotTakeBack(), {},
        stringWithFormat(NSLocalizedString("failed: %@"), runText(run.tool, run.arguments)));
}

Status carryOutRuns(const std::vector<PlannedRun>& runs) {
    for (const PlannedRun& run : runs) {
        if (!NiutilTask::sharedInstance().carryOut(run.tool, run.arguments)) {
            return failedRun(run);
        }
    }
    return {};
}

/// Checks the records, because a failed commit undoes even the runs that succeeded.
Status checkRecords(const HistoryEntry& entry) {
    if (entry.records.empty()) {
        return {};
    }
    const DirectoryView now(platform::Host::current().services().localDomain);
    if (!now.isReadable()) {
        return Status::failure(cannotTakeBack(), NSLocalizedString("the directory"),
                               NSLocalizedString("it cannot be read"));
    }
    for (const RecordChange& record : entry.records) {
        if (!isSameRecord(now.record(record.path), record.before)) {
            return Status::failure(cannotTakeBack(), record.path, NSLocalizedString("it is not as it was"));
        }
    }
    return {};
}

Status restoreFile(const FileChange& file) {
    const std::string temporary =
        stringByExpandingTildeInPath(file.path == systempath::smbConf ? systempath::temporarySmbConf
                                                                      : systempath::temporaryAppleFileServer);
    Status status = platform::writeWholeFile(platform::Host::current().paths().map(temporary),
                                             file.before.value_or(""), {.mode = 0600});
    if (!status.isOk()) {
        NSLog("%@", status.text());
        return status;
    }
    const PlannedRun run{systempath::cp, {temporary, file.path}, ""};
    status = carryOutRuns({run});
    const Status removed = removeFileAtPath(temporary);
    return status.isOk() ? removed : status;
}

} // namespace

Status carryOut(const UndoPlan& plan) {
    const auto& pending = platform::Host::current().services().pendingWrites;
    Status status = carryOutRuns(plan.records);
    if (!status.isOk() && pending) {
        pending->takeBack();
    }
    platform::Host::settlePendingWrites();
    status = status.isOk() ? checkRecords(plan.entry) : status;
    for (const FileChange& file : plan.files) {
        status = status.isOk() ? restoreFile(file) : status;
    }
    if (status.isOk()) {
        status = carryOutRuns(plan.folders);
    }
    if (!status.isOk()) {
        return status;
    }
    if (plan.hangsUpAFP) {
        NiutilTask::sharedInstance().restartAFS();
    }
    if (plan.hangsUpSMB) {
        NiutilTask::sharedInstance().restartSMB();
    }
    return {};
}

} // namespace review
