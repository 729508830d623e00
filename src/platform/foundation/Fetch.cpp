#include "platform/foundation/Fetch.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <memory>
#include <utility>

#include <curl/curl.h>

namespace platform {

namespace {

constexpr long timeoutInSeconds = 10;
constexpr long redirectsAtMost = 5;
constexpr std::size_t bytesAtMost = std::size_t{1024} * 1024;
constexpr const char* protocols = "http,https";

/// The body so far, and whether the server sent more than is taken.
struct Body {
    std::string bytes;
    bool isTooLarge = false;
};

/// libcurl's write function: taking fewer bytes than it was given ends the transfer.
std::size_t takeBytes(const char* data, std::size_t size, std::size_t count, void* userData) {
    Body& body = *static_cast<Body*>(userData);
    const std::size_t length = size * count;
    if (length > bytesAtMost - body.bytes.size()) {
        body.isTooLarge = true;
        return 0;
    }
    body.bytes.append(data, length);
    return length;
}

using Transfer = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;

CURLcode perform(CURL* transfer, const std::string& address, Body& body) {
    const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (initialised != CURLE_OK) {
        return initialised;
    }
    curl_easy_setopt(transfer, CURLOPT_URL, address.c_str());
    curl_easy_setopt(transfer, CURLOPT_PROTOCOLS_STR, protocols);
    curl_easy_setopt(transfer, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
    curl_easy_setopt(transfer, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(transfer, CURLOPT_MAXREDIRS, redirectsAtMost);
    curl_easy_setopt(transfer, CURLOPT_TIMEOUT, timeoutInSeconds);
    curl_easy_setopt(transfer, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(transfer, CURLOPT_USERAGENT, "Brindle");
    curl_easy_setopt(transfer, CURLOPT_WRITEFUNCTION, takeBytes);
    curl_easy_setopt(transfer, CURLOPT_WRITEDATA, &body);
    return curl_easy_perform(transfer);
}

Status failure(const std::string& address, const std::string& reason) {
    return Status::failure("cannot fetch", address,
                           stringWithFormat(NSLocalizedString("cannot fetch %@: %@"), address, reason));
}

} // namespace

Result<std::string> fetchContentsOfURL(const std::string& address) {
    const Transfer transfer(curl_easy_init(), &curl_easy_cleanup);
    if (!transfer) {
        return failure(address, NSLocalizedString("no memory"));
    }
    Body body;
    const CURLcode result = perform(transfer.get(), address, body);
    if (body.isTooLarge) {
        return failure(address, NSLocalizedString("the document is larger than 1 MiB"));
    }
    if (result != CURLE_OK) {
        return failure(address, curl_easy_strerror(result));
    }
    long status = 0;
    curl_easy_getinfo(transfer.get(), CURLINFO_RESPONSE_CODE, &status);
    if (status < 200 || status > 299) {
        return failure(address,
                       stringWithFormat(NSLocalizedString("the server answered with status %d"), status));
    }
    return std::move(body.bytes);
}

} // namespace platform
