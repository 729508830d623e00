#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The directory client, read only: a domain of named records in a tree, each with an ordered list of named properties, each with an
// ordered list of values. Texts are bytes. Not thread-safe; a domain is used on the thread that opened it.

using ni_status = std::int32_t;

inline constexpr ni_status NI_OK = 0;
inline constexpr ni_status NI_BADID = 1;      ///< no record with that id
inline constexpr ni_status NI_STALE = 2;
inline constexpr ni_status NI_NODIR = 4;      ///< no directory at that path
inline constexpr ni_status NI_NOPROP = 5;     ///< the record has no such property
inline constexpr ni_status NI_NORESPONSE = 1004;
inline constexpr ni_status NI_SYSTEMERR = 9;
inline constexpr ni_status NI_CANTOPEN = 1006;
inline constexpr ni_status NI_FAILED = 9999;

/// A record's object number, with the instance that the client last saw.
struct ni_id {
    std::uint32_t nii_object = 0;
    std::uint32_t nii_instance = 0;
};

struct ni_idlist {
    std::vector<std::uint32_t> niil_val;
};

struct ni_namelist {
    std::vector<std::string> ninl_val;
};

/// A connection; made by ni_open, closed by ni_free.
struct ni_domain;

/// Opens a connection to the local domain: `relative` must be null and `name` ".".
[[nodiscard]] ni_status ni_open(ni_domain* relative, const char* name, ni_domain** domain);
/// 1: calls fail with a status when the store does not answer in time, instead of trying for ever.
void ni_setabort(ni_domain* domain, int abort);
/// In seconds.
void ni_setreadtimeout(ni_domain* domain, int seconds);
void ni_setwritetimeout(ni_domain* domain, int seconds);
[[nodiscard]] ni_status ni_root(ni_domain* domain, ni_id* id);
/// Follows a slash-separated path from `*id` and puts the record found into `*id`; on failure it stays as it was.
[[nodiscard]] ni_status ni_pathsearch(ni_domain* domain, ni_id* id, const char* path);
/// The children's object numbers, in the order in which they were made.
[[nodiscard]] ni_status ni_children(ni_domain* domain, ni_id* id, ni_idlist* children);
/// The names of the record's properties, in the record's order.
[[nodiscard]] ni_status ni_listprops(ni_domain* domain, ni_id* id, ni_namelist* properties);
/// The values of the record's first property of that name, in stored order.
[[nodiscard]] ni_status ni_lookupprop(ni_domain* domain, ni_id* id, const std::string& property, ni_namelist* values);
void ni_namelist_free(ni_namelist* list);
void ni_idlist_free(ni_idlist* list);
void ni_free(ni_domain* domain);
/// The text for a status.
[[nodiscard]] const char* ni_error(ni_status status);
