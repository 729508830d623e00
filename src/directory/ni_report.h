#pragma once

#include "directory/ReportLine.h"
#include "platform/netinfo/StoreStamp.h"
#include "platform/netinfo/ni.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Reports on the local directory, one line for each child record of a directory: for each requested property
// its values joined by "," (or "#NoValue#") and a tab, then "\n". Values are not escaped. Main thread only.

/// Writes "LABEL: text of the status" and a line break to the system log. Returns, in spite of its name.
void errexit(const char* label, ni_status status);

/// Appends the line of the record `id`. Returns 0; what cannot be read is logged and appears as "#NoValue#".
int ni_report_dir(ni_domain* domain, ni_id id, std::span<const std::string> properties,
                  std::vector<std::string>& output);

/// Appends the lines of the children of the directory `id`, in stored order. Returns 0.
int ni_report(ni_domain* domain, ni_id id, std::span<const std::string> properties,
              std::vector<std::string>& output);

/// Opens the local domain and appends the report on the directory at `path`. Returns 0, or the status of the
/// step that failed; a failure is logged.
int ni_report_local(const std::string& path, std::span<const std::string> properties,
                    std::vector<std::string>& output);

/// A report and the state of the directory that it shows.
struct KeptReport {
    std::optional<platform::StoreStamp> stamp; ///< none if the lines must be read again
    std::shared_ptr<const std::vector<std::string>> lines;
};

/// The same, where `kept` holds the last report with this path and these properties: the lines are read again
/// only if the directory has changed since. When a step fails, no lines are kept.
int ni_report_local(const std::string& path, std::span<const std::string> properties, KeptReport& kept);
