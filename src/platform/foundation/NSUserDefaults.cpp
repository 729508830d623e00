#include "platform/foundation/NSUserDefaults.h"

#include "platform/foundation/Host.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

NSUserDefaults& NSUserDefaults::standardUserDefaults() {
    return platform::Host::current().userDefaults();
}

std::string NSUserDefaults::shownPath() const {
    return platform::Host::current().paths().shown(path_);
}

void NSUserDefaults::readOnce() const {
    if (values_) {
        return;
    }
    values_.emplace();
    if (path_.empty()) {
        return;
    }
    const auto contents = contentsOfFile(path_);
    if (!contents.isOk()) {
        if (contents.status().systemError() != ENOENT) {
            mayWrite_ = false;
            NSLog("cannot read the settings in %@: %@", shownPath(), contents.status().why());
        }
        return;
    }
    if (auto read = NSMutableDictionary::dictionaryWithData(*contents)) {
        values_ = std::move(read);
    } else {
        mayWrite_ = false;
        NSLog("%@ is not a property list: it is left as it is, and settings last until the end of this "
              "session. "
              "Remove the file to have them kept again",
              shownPath());
    }
}

void NSUserDefaults::readAgain() {
    if (isStored_ && mayWrite_) {
        values_.reset();
    }
    readOnce();
}

std::optional<std::int32_t> NSUserDefaults::integerForKey(const std::string& key) const {
    readOnce();
    return values_->hasKey(key) ? std::optional(values_->intForKey(key)) : std::nullopt;
}

void NSUserDefaults::setInteger(std::int32_t value, const std::string& key) {
    readAgain();
    values_->setInt(value, key);
    write();
}

std::optional<std::string> NSUserDefaults::stringForKey(const std::string& key) const {
    readOnce();
    return values_->stringForKey(key);
}

void NSUserDefaults::setString(const std::string& value, const std::string& key) {
    readAgain();
    values_->setString(value, key);
    write();
}

void NSUserDefaults::write() {
    isStored_ = false;
    if (path_.empty() || !mayWrite_) {
        return;
    }
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), error);
    if (error) {
        NSLog("cannot make the folder for the settings in %@: %@", shownPath(), error.message());
    } else if (const auto status = values_->writeToFile(path_); !status.isOk()) {
        NSLog("cannot write the settings to %@: %@", shownPath(), status.why());
    } else {
        isStored_ = true;
    }
}
