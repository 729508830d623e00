#pragma once

#include <string_view>

namespace review {

/// Where the runs of an action can be ended before the last.
enum class Stops {
    Nowhere,
    AfterRun,   ///< each run is for an object of its own
    AfterObject ///< several runs in a row are for one
};

/// An operation of the controller that changes something: what those who stand around its action need to know.
struct WritingOperation {
    std::string_view name; ///< the full name, "createShare:"
    Stops stops = Stops::Nowhere;
    bool removes = false;      ///< wants something gone
    bool savesPage = false;    ///< writes all that stands on its page
    bool isOfSettings = false; ///< changes the settings files alone
};

/// The operation of that name; null when it changes nothing.
[[nodiscard]] const WritingOperation* findWritingOperation(std::string_view name);

[[nodiscard]] Stops stopsOf(std::string_view operation);

} // namespace review
