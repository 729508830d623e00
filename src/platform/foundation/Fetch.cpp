#include "platform/foundation/Fetch.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <memory>
#include <utility>

#include <curl/curl.h>
#include <dlfcn.h>

namespace platform {

namespace {

constexpr long timeoutInSeconds = 10;
constexpr long redirectsAtMost = 5;
constexpr std::size_t bytesAtMost = std::size_t{1024} * 1024;
constexpr const char* protocols = "http,https";

/// The body so far, and whether the server sent more than is accepted.
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

/// libcurl, loaded when it is first needed: it depends on thirty libraries, and hardly any start fetches
/// anything.
class Curl {
  public:
    Curl() : library_(::dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL)) {
        load(globalInit, "curl_global_init");
        load(init, "curl_easy_init");
        load(setOption, "curl_easy_setopt");
        load(perform, "curl_easy_perform");
        load(information, "curl_easy_getinfo");
        load(reason, "curl_easy_strerror");
        load(cleanUp, "curl_easy_cleanup");
    }

    [[nodiscard]] bool isThere() const { return isWhole_; }

    decltype(&curl_global_init) globalInit = nullptr;
    decltype(&curl_easy_init) init = nullptr;
    decltype(&curl_easy_setopt) setOption = nullptr;
    decltype(&curl_easy_perform) perform = nullptr;
    decltype(&curl_easy_getinfo) information = nullptr;
    decltype(&curl_easy_strerror) reason = nullptr;
    decltype(&curl_easy_cleanup) cleanUp = nullptr;

  private:
    template <class Function>
    void load(Function& function, const char* name) {
        function = library_ != nullptr ? reinterpret_cast<Function>(::dlsym(library_, name)) : nullptr;
        isWhole_ = isWhole_ && function != nullptr;
    }

    void* library_; // stays loaded until the program ends, as a linked library would
    bool isWhole_ = true;
};

using Transfer = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;

CURLcode perform(const Curl& curl, CURL* transfer, const std::string& address, Body& body) {
    curl.setOption(transfer, CURLOPT_URL, address.c_str());
    curl.setOption(transfer, CURLOPT_PROTOCOLS_STR, protocols);
    curl.setOption(transfer, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
    curl.setOption(transfer, CURLOPT_FOLLOWLOCATION, 1L);
    curl.setOption(transfer, CURLOPT_MAXREDIRS, redirectsAtMost);
    curl.setOption(transfer, CURLOPT_TIMEOUT, timeoutInSeconds);
    curl.setOption(transfer, CURLOPT_NOSIGNAL, 1L);
    curl.setOption(transfer, CURLOPT_USERAGENT, "Brindle");
    curl.setOption(transfer, CURLOPT_WRITEFUNCTION, takeBytes);
    curl.setOption(transfer, CURLOPT_WRITEDATA, &body);
    return curl.perform(transfer);
}

Status failure(const std::string& address, const std::string& reason) {
    return Status::failure("cannot fetch", address,
                           stringWithFormat(NSLocalizedString("cannot fetch %@: %@"), address, reason));
}

} // namespace

Result<std::string> fetchContentsOfURL(const std::string& address) {
    static const Curl curl;
    if (!curl.isThere()) {
        return failure(address, NSLocalizedString("libcurl is not installed; install the package libcurl4"));
    }
    const bool isReady = curl.globalInit(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    const Transfer transfer(isReady ? curl.init() : nullptr, curl.cleanUp);
    if (!transfer) {
        return failure(address, NSLocalizedString("no memory"));
    }
    Body body;
    const CURLcode result = perform(curl, transfer.get(), address, body);
    if (body.isTooLarge) {
        return failure(address, NSLocalizedString("the document is larger than 1 MiB"));
    }
    if (result != CURLE_OK) {
        return failure(address, curl.reason(result));
    }
    long status = 0;
    curl.information(transfer.get(), CURLINFO_RESPONSE_CODE, &status);
    if (status < 200 || status > 299) {
        return failure(address,
                       stringWithFormat(NSLocalizedString("the server answered with status %d"), status));
    }
    return std::move(body.bytes);
}

} // namespace platform
