#include "review/ServerChange.h"

#include "platform/foundation/SystemPaths.h"
#include "privileged/NiutilTask.h"

namespace review {

PlannedRun serverRun(ServerChange change) {
    return {platform::systempath::service, {"smbd", change == ServerChange::Start ? "start" : "enable"}, ""};
}

bool changeServer(ServerChange change) {
    const PlannedRun run = serverRun(change);
    return NiutilTask::sharedInstance().carryOut(run.tool, run.arguments);
}

} // namespace review
