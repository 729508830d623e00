#include "review/TextDifference.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>

namespace review {

namespace {

using Lines = std::span<const std::string_view>;

/// The search for the fewest changes ends at this number, because its time grows with the square.
constexpr int mostChanges = 1000;

std::ptrdiff_t sizeOf(Lines lines) {
    return static_cast<std::ptrdiff_t>(lines.size());
}

/// The algorithm of Eugene W. Myers, "An O(ND) difference algorithm and its variations": for each number of
/// changes the furthest place that they reach on each diagonal, kept for tracing back.
class FewestChanges {
  public:
    FewestChanges(Lines before, Lines after) : before_(before), after_(after) {}

    /// False when there are too many changes.
    [[nodiscard]] bool find() {
        std::vector<std::ptrdiff_t> furthest(2 * static_cast<std::size_t>(mostChanges) + 3, 0);
        for (int changes = 0; changes <= mostChanges; ++changes) {
            rounds_.push_back(furthest);
            for (int diagonal = -changes; diagonal <= changes; diagonal += 2) {
                std::ptrdiff_t from = comesFromAbove(furthest, diagonal, changes)
                                          ? at(furthest, diagonal + 1)
                                          : at(furthest, diagonal - 1) + 1;
                while (from < sizeOf(before_) && from - diagonal < sizeOf(after_) &&
                       before_[static_cast<std::size_t>(from)] ==
                           after_[static_cast<std::size_t>(from - diagonal)]) {
                    ++from;
                }
                at(furthest, diagonal) = from;
                if (from >= sizeOf(before_) && from - diagonal >= sizeOf(after_)) {
                    return true;
                }
            }
        }
        return false;
    }

    /// Call after find(). Marks the lines that stay.
    void markStaying(std::vector<bool>* before, std::vector<bool>* after) {
        std::ptrdiff_t x = sizeOf(before_);
        std::ptrdiff_t y = sizeOf(after_);
        for (int changes = static_cast<int>(rounds_.size()) - 1; changes >= 0; --changes) {
            auto& furthest = rounds_[static_cast<std::size_t>(changes)];
            const auto diagonal = static_cast<int>(x - y);
            const bool above = comesFromAbove(furthest, diagonal, changes);
            const int previous = above ? diagonal + 1 : diagonal - 1;
            const std::ptrdiff_t startX = changes == 0 ? 0 : at(furthest, previous);
            const std::ptrdiff_t startY = changes == 0 ? 0 : startX - previous;
            while (x > startX && y > startY) {
                --x;
                --y;
                (*before)[static_cast<std::size_t>(x)] = true;
                (*after)[static_cast<std::size_t>(y)] = true;
            }
            x = startX;
            y = startY;
        }
    }

  private:
    static std::ptrdiff_t& at(std::vector<std::ptrdiff_t>& furthest, int diagonal) {
        const int index = diagonal + mostChanges + 1; // diagonals are numbered from -mostChanges - 1
        return furthest[static_cast<std::size_t>(index)];
    }

    static bool comesFromAbove(std::vector<std::ptrdiff_t>& furthest, int diagonal, int changes) {
        return diagonal == -changes ||
               (diagonal != changes && at(furthest, diagonal - 1) < at(furthest, diagonal + 1));
    }

    Lines before_;
    Lines after_;
    std::vector<std::vector<std::ptrdiff_t>> rounds_;
};

/// Appends the changes. `first` equal lines come before `before` and `after`.
void addChanges(std::vector<LineChange>* changes, Lines before, Lines after, std::size_t first) {
    FewestChanges fewest(before, after);
    std::vector<bool> staysBefore(before.size());
    std::vector<bool> staysAfter(after.size());
    if (fewest.find()) {
        fewest.markStaying(&staysBefore, &staysAfter);
    }
    std::size_t x = 0;
    std::size_t y = 0;
    while (x < before.size() || y < after.size()) {
        for (; x < before.size() && !staysBefore[x]; ++x) {
            changes->push_back({LineChange::Kind::Goes, std::string(before[x]), first + x + 1});
        }
        for (; y < after.size() && !staysAfter[y]; ++y) {
            changes->push_back({LineChange::Kind::Comes, std::string(after[y]), first + y + 1});
        }
        x += x < before.size() ? 1 : 0;
        y += y < after.size() ? 1 : 0;
    }
}

} // namespace

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::vector<LineChange> lineChanges(const std::vector<std::string_view>& before,
                                    const std::vector<std::string_view>& after) {
    const auto [startBefore, startAfter] = std::ranges::mismatch(before, after);
    auto endBefore = before.end();
    auto endAfter = after.end();
    while (endBefore != startBefore && endAfter != startAfter && *(endBefore - 1) == *(endAfter - 1)) {
        --endBefore;
        --endAfter;
    }
    std::vector<LineChange> changes;
    addChanges(&changes, Lines(startBefore, endBefore), Lines(startAfter, endAfter),
               static_cast<std::size_t>(startBefore - before.begin()));
    return changes;
}

} // namespace review
