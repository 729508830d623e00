#include "access/FolderPath.h"

#include "model/ServerSettings.h"

#include <array>
#include <cerrno>
#include <climits>

#include <unistd.h>

namespace accesscheck {

namespace {

constexpr int mostLinks = 40; // the kernel's limit: path_resolution(7)

} // namespace

std::optional<std::string> expandedPath(std::string_view path, const std::string& share,
                                        const std::string& user) {
    path = withoutQuotes(path);
    std::string result;
    for (std::size_t index = 0; index < path.size(); ++index) {
        if (path.substr(index).starts_with("%$(")) {
            return std::nullopt; // a variable of the server's environment
        }
        const char variable = index + 1 < path.size() ? path[index + 1] : '\0';
        if (path[index] != '%' || !isServerVariable(variable)) {
            if (path[index] != ' ' || !result.ends_with(' ')) {
                result += path[index];
            }
            continue;
        }
        ++index;
        if (variable == 'S') {
            result += share;
        } else if (variable == 'u' || variable == 'U') {
            result += user;
        } else {
            return std::nullopt;
        }
    }
    return result;
}

FolderWalk::FolderWalk(std::string_view path) {
    queue(path);
}

void FolderWalk::queue(std::string_view path) {
    std::deque<std::string> parts;
    while (!path.empty()) {
        const auto end = path.find('/');
        if (end != 0) {
            parts.emplace_back(path.substr(0, end));
        }
        path = end == std::string_view::npos ? std::string_view() : path.substr(end + 1);
    }
    parts_.insert(parts_.begin(), parts.begin(), parts.end());
}

std::optional<std::string> FolderWalk::next() {
    if (place_.empty()) {
        return place_ = "/";
    }
    while (!parts_.empty() && error_ == 0) {
        const std::string part = parts_.front();
        parts_.pop_front();
        const std::string below = (place_ == "/" ? "" : place_) + "/" + part;
        if (part == "..") {
            const auto slash = place_.rfind('/');
            return place_ = slash == 0 ? "/" : place_.substr(0, slash);
        }
        std::array<char, PATH_MAX> target{};
        const ssize_t size = part == "." ? -1 : ::readlink(below.c_str(), target.data(), target.size());
        if (size <= 0) {
            return part == "." ? place_ : place_ = below;
        }
        if (++links_ > mostLinks) {
            error_ = ELOOP;
            return std::nullopt;
        }
        const std::string_view link(target.data(), static_cast<std::size_t>(size));
        place_ = link.front() == '/' ? "/" : place_;
        queue(link);
    }
    return std::nullopt;
}

} // namespace accesscheck
