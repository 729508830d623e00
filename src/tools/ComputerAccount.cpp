#include "tools/ComputerAccount.h"

#include "platform/netinfo/AccountNumber.h"
#include "tools/AccountPrograms.h"
#include "tools/StoreChange.h"

#include <utility>

namespace tools {

using platform::Status;
using platform::Store;

using State = ComputerDirectory::State;

ComputerAccount::ComputerAccount(ComputerDirectory& directory, const DirectoryChange& change)
    : directory_(directory), change_(change), path_(recordPath(change.path).value()),
      isOurs_(directory.hasMade(path_)) {}

Status ComputerAccount::refused(std::string why) const {
    return refusal(change_, std::move(why));
}

Status ComputerAccount::runProgram(const std::vector<std::string>& words) const {
    Status status = directory_.commit();
    if (status.isOk()) {
        status = runAccountProgram(words);
    }
    return status.isOk() ? Status() : refused(std::string(status.why()));
}

std::vector<std::string> ComputerAccount::collectedValues(Store::Record record, const char* property) const {
    return directory_.store().values(record, property).value_or(std::vector<std::string>());
}

std::string ComputerAccount::collectedValue(Store::Record record, const char* property,
                                            const char* other) const {
    const auto values = collectedValues(record, property);
    return values.empty() ? other : values.front();
}

Status ComputerAccount::run() {
    if (Status status = checkAccountChange(directory_.accounts(), change_, isOurs_); !status.isOk()) {
        return status;
    }
    return number() ? changeAccount() : collect();
}

Status ComputerAccount::collect() {
    Store& store = directory_.store();
    const auto record = store.find(path_);
    if (!change_.property && change_.operation == "-create") {
        return begin(record);
    }
    const auto before = record && change_.property ? store.values(*record, *change_.property) : std::nullopt;
    if (Status status = writeStore(); !status.isOk()) { // fails when the record or value does not exist
        return status;
    }
    const auto program = record && change_.property ? programThatMakes(*record) : std::nullopt;
    return program ? make(*record, before, *program) : directory_.commit();
}

Status ComputerAccount::begin(std::optional<Store::Record> left) {
    Store& store = directory_.store();
    if (left) {
        store.removeRecord(*left); // left by an account that was never made
    }
    const auto folder = store.find(RecordPath{path_.front()});
    if (!folder) {
        return refused(store.status().isOk() ? "the directory has no place for it" : store.status().text());
    }
    directory_.setState(store.addRecord(*folder, name()), State::Collecting);
    return directory_.commit();
}

Status ComputerAccount::make(Store::Record record,
                             const std::optional<std::vector<std::string>>& valuesBefore,
                             const std::vector<std::string>& program) {
    // Set before the account exists, so that it counts as ours even if this run is killed.
    directory_.setState(record, State::Made);
    Status status = runProgram(program);
    if (status.isOk()) {
        return {};
    }
    directory_.setState(record, State::Collecting);
    if (valuesBefore) {
        directory_.store().setValues(record, *change_.property, *valuesBefore);
    } else {
        directory_.store().removeProperty(record, *change_.property);
    }
    static_cast<void>(directory_.commit()); // the next run removes a record without an account
    return status;
}

Status ComputerAccount::changeAccount() {
    if (!change_.property) {
        return change_.operation == "-create" ? Status() : remove();
    }
    const std::string& property = *change_.property;
    if (property == "name") {
        return rename();
    }
    if (!isPropertyOfLine(path_, property)) {
        return writeBesideLine();
    }
    if (change_.operation != "-delete" && property == numberProperty()) {
        return renumber();
    }
    return writeLine();
}

Status ComputerAccount::rename() {
    const std::string& newName = change_.values.front();
    if (newName == name()) {
        return {};
    }
    const unsigned same = number().value_or(0);
    const Status status =
        directory_.carryThrough({isUser(), {name(), same}, {newName, same}, {}}, programThatRenames(newName));
    return status.isOk() ? Status() : refused(std::string(status.why()));
}

Status ComputerAccount::renumber() {
    const unsigned before = number().value_or(0);
    const unsigned after = numberOf(change_).value_or(before);
    if (after == before) {
        return {};
    }
    const Status status = directory_.carryThrough({isUser(), {name(), before}, {name(), after}, {}},
                                                  programThatRenumbers(after));
    return status.isOk() ? Status() : refused(std::string(status.why()));
}

Status ComputerAccount::remove() {
    const platform::GroupLine* own = isUser() ? directory_.accounts().findGroup(name()) : nullptr;
    const Status status = directory_.carryThrough(
        {isUser(), {name(), number().value_or(0)}, {"", own != nullptr ? own->gid : 0}, {}},
        programThatDeletes());
    return status.isOk() ? Status() : refused(std::string(status.why()));
}

Status ComputerAccount::writeBesideLine() {
    Store& store = directory_.store();
    const auto folder = store.find(RecordPath{path_.front()});
    if (folder && change_.operation != "-delete" && !store.find(path_)) {
        const Store::Record record = store.addRecord(*folder, name());
        store.setValues(record, numberProperty(),
                        std::vector{platform::directoryNumber(number().value_or(0))});
        directory_.setState(record, State::Found);
    }
    Status status = writeStore();
    return status.isOk() ? directory_.commit() : status;
}

Status ComputerAccount::writeStore() {
    DirectorySession::AccountChanges ignored; // only a root's server needs them
    if (!change_.property || change_.property != numberProperty() || change_.operation != "-create") {
        return changeStore(directory_.store(), change_, ignored);
    }
    DirectoryChange normal = change_;
    normal.values = {platform::directoryNumber(numberOf(change_).value_or(0))};
    return changeStore(directory_.store(), normal, ignored);
}

} // namespace tools
