#pragma once

#include <string_view>

namespace review {

/// Where an action can be stopped.
enum class Stops {
    Nowhere,
    AfterRun,   ///< each run is for another object
    AfterObject ///< several consecutive runs are for one object
};

/// An operation of the controller that changes something, and what the review and the window need to know
/// about it.
struct WritingOperation {
    std::string_view name; ///< the full name, "createShare:"
    Stops stops = Stops::Nowhere;
    bool removes = false;      ///< takes something away
    bool savesPage = false;    ///< writes everything on its page
    bool isOfSettings = false; ///< changes only the settings files
};

/// Returns the operation of that name, or null when it changes nothing.
[[nodiscard]] const WritingOperation* findWritingOperation(std::string_view name);

/// Whether the operation of that name changes anything.
[[nodiscard]] inline bool isWriting(std::string_view name) {
    return findWritingOperation(name) != nullptr;
}

/// Returns where the action of that operation can be stopped.
[[nodiscard]] Stops stopsOf(std::string_view operation);

} // namespace review
