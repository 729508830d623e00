#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The read-only directory client. A domain is a tree of named records, each with an ordered list of named
// properties, each with an ordered list of values. Strings are bytes. Not thread-safe: use a domain only on
// the thread that opened it.
//
// Until ni_free a domain shows the directory as it was when it was first read, so that what is listed and
// what is read later fit together. Nothing is ever written, neither to the store nor beside it, so the store
// may be read-only. If a writer was killed half way, a private copy is recovered and read instead.

namespace platform {
class LocalDomain;
} // namespace platform

using ni_status = std::int32_t;

inline constexpr ni_status NI_OK = 0;
inline constexpr ni_status NI_BADID = 1;         ///< no record with that id
inline constexpr ni_status NI_NODIR = 4;         ///< no directory at that path
inline constexpr ni_status NI_NOPROP = 5;        ///< the record has no such property
inline constexpr ni_status NI_SYSTEMERR = 9;     ///< the store cannot be read, or is damaged
inline constexpr ni_status NI_NORESPONSE = 1004; ///< writers held the store for longer than the timeout
inline constexpr ni_status NI_CANTOPEN =
    1006;                                    ///< there is no store, it is not a store, or it may not be read
inline constexpr ni_status NI_FAILED = 9999; ///< the call makes no sense

/// A record's object number.
struct ni_id {
    std::uint32_t nii_object = 0;
};

struct ni_idlist {
    std::vector<std::uint32_t> niil_val;
};

/// A list of strings that are valid until the list is destroyed or passed to ni_namelist_free.
struct ni_namelist {
    std::vector<std::string_view> ninl_val;
    std::vector<std::shared_ptr<const void>> texts_; ///< keep alive what the views refer to
};

/// A connection, made by ni_open and closed by ni_free.
struct ni_domain;

/// Opens a connection to the current host's local domain. `relative` must be null and `name` ".". Settles the
/// host's pending writes first.
[[nodiscard]] ni_status ni_open(ni_domain* relative, const char* name, ni_domain** domain);
/// Opens a connection to the domain whose store is `file`. Settles the pending writes of the current host, if
/// there is one.
[[nodiscard]] ni_status ni_openfile(const std::string& file, ni_domain** domain);
/// Opens a connection to `local`, as ni_open does to the current host's.
[[nodiscard]] ni_status ni_opendomain(const platform::LocalDomain& local, ni_domain** domain);
/// With 1, calls that wait for the store fail after the read timeout, and after that later calls in the same
/// action do not wait again. With 0, the initial state, calls wait for ever.
void ni_setabort(ni_domain* domain, int abort);
/// Sets the read timeout in seconds, initially 30; 0: do not wait at all.
void ni_setreadtimeout(ni_domain* domain, int seconds);
/// Does nothing, because this client never writes.
void ni_setwritetimeout(ni_domain* domain, int seconds);
[[nodiscard]] ni_status ni_root(ni_domain* domain, ni_id* id);
/// Follows a slash-separated path from `*id` and puts the record that it finds into `*id`. On failure `*id`
/// is unchanged. Empty components are skipped.
[[nodiscard]] ni_status ni_pathsearch(ni_domain* domain, ni_id* id, const char* path);
/// Appends the children's object numbers, in the order in which the children were made.
[[nodiscard]] ni_status ni_children(ni_domain* domain, ni_id* id, ni_idlist* children);
/// Appends the children that have `value` among the values of `property`, in the order in which they were
/// made.
[[nodiscard]] ni_status ni_lookup(ni_domain* domain, ni_id* id, std::string_view property,
                                  std::string_view value, ni_idlist* children);
/// Appends the names of the record's properties, in stored order.
[[nodiscard]] ni_status ni_listprops(ni_domain* domain, ni_id* id, ni_namelist* properties);
/// Appends the values of the record's first property of that name, in stored order.
[[nodiscard]] ni_status ni_lookupprop(ni_domain* domain, ni_id* id, std::string_view property,
                                      ni_namelist* values);
void ni_namelist_free(ni_namelist* list);
void ni_idlist_free(ni_idlist* list);
void ni_free(ni_domain* domain);
/// The English text for a status.
[[nodiscard]] const char* ni_error(ni_status status);

namespace platform {

struct CloseDomain {
    void operator()(ni_domain* domain) const { ni_free(domain); }
};

/// A connection that is closed when its owner is destroyed.
using OwnedDomain = std::unique_ptr<ni_domain, CloseDomain>;

/// Opens a connection to the domain whose store is `file`, and finds the record at `path` in it. Its calls
/// wait up to thirty seconds for writers.
[[nodiscard]] ni_status openRecord(const std::string& file, const std::string& path, OwnedDomain* domain,
                                   ni_id* id);
/// The same in the current host's local domain.
[[nodiscard]] ni_status openLocalRecord(const std::string& path, OwnedDomain* domain, ni_id* id);

} // namespace platform
