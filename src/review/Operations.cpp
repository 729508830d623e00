#include "review/Operations.h"

#include <algorithm>
#include <array>

namespace review {

namespace {

constexpr auto operations = std::to_array<WritingOperation>({
    {.name = "createShare:", .savesPage = true},
    {.name = "deleteShare:", .removes = true},
    {.name = "deleteAllShares:", .stops = Stops::AfterRun, .removes = true},
    {.name = "updateSharesFor10pt2:", .stops = Stops::AfterObject},
    {.name = "addNewUser:", .savesPage = true},
    {.name = "addNewGroup:", .savesPage = true},
    {.name = "deleteSelectedUser:", .removes = true},
    {.name = "deleteSelectedGroup:", .removes = true},
    {.name = "addUserToGroup:", .stops = Stops::AfterRun},
    {.name = "removeUserFromGroup:", .stops = Stops::AfterRun, .removes = true},
    {.name = "setPassword:"},
    {.name = "enableSelectedPublicShare:"},
    {.name = "disableSelectedPublicShare:"},
    {.name = "enableAllPublicShares:", .stops = Stops::AfterRun},
    {.name = "disableAllPublicShares:", .stops = Stops::AfterRun},
    {.name = "updateAFSProperties:", .savesPage = true, .isOfSettings = true},
    {.name = "updateSMBProperties:", .savesPage = true, .isOfSettings = true},
});

} // namespace

const WritingOperation* findWritingOperation(std::string_view name) {
    const auto* found = std::ranges::find(operations, name, &WritingOperation::name);
    return found == operations.end() ? nullptr : found;
}

Stops stopsOf(std::string_view operation) {
    const WritingOperation* found = findWritingOperation(operation);
    return found == nullptr ? Stops::Nowhere : found->stops;
}

} // namespace review
