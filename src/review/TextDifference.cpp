#include "review/TextDifference.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace review {

namespace {

using Lines = std::span<const std::string_view>;

/// The search for the fewest changes ends at this number, because its time grows with the square.
constexpr int mostChanges = 1000;

std::ptrdiff_t sizeOf(Lines lines) {
    return static_cast<std::ptrdiff_t>(lines.size());
}

/// The places of a line in both texts.
struct Anchor {
    std::size_t before = 0;
    std::size_t after = 0;
};

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

    /// Call after find(). Appends the places of the lines that stay, in any order. `start` is where both
    /// begin in the whole texts.
    void addStaying(std::vector<Anchor>* staying, Anchor start) {
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
                staying->push_back(
                    {start.before + static_cast<std::size_t>(x), start.after + static_cast<std::size_t>(y)});
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

/// The lines that occur once in both texts, as many of them as are in the same order in both.
std::vector<Anchor> anchorsOf(Lines before, Lines after) {
    struct Places {
        Anchor last;
        int countBefore = 0;
        int countAfter = 0;
    };

    std::unordered_map<std::string_view, Places> lines;
    for (std::size_t index = 0; index < before.size(); ++index) {
        Places& places = lines[before[index]];
        places.last.before = index;
        ++places.countBefore;
    }
    for (std::size_t index = 0; index < after.size(); ++index) {
        Places& places = lines[after[index]];
        places.last.after = index;
        ++places.countAfter;
    }
    // The longest rising sequence: for each length the anchor that ends the lowest, and what comes before it.
    std::vector<Anchor> candidates;
    std::vector<std::size_t> previous;
    std::vector<std::size_t> ends;
    for (const std::string_view line : before) {
        const Places& places = lines.at(line);
        if (places.countBefore != 1 || places.countAfter != 1) {
            continue;
        }
        const auto end = std::ranges::lower_bound(ends, places.last.after, {},
                                                  [&](std::size_t index) { return candidates[index].after; });
        previous.push_back(end == ends.begin() ? candidates.size() : *(end - 1));
        if (end == ends.end()) {
            ends.push_back(candidates.size());
        } else {
            *end = candidates.size();
        }
        candidates.push_back(places.last);
    }
    std::vector<Anchor> anchors;
    for (std::size_t index = ends.empty() ? 0 : ends.back(), left = ends.size(); left > 0; --left) {
        anchors.push_back(candidates[index]);
        index = previous[index];
    }
    std::ranges::reverse(anchors);
    return anchors;
}

/// Appends the places of the lines that stay. `start` is where both begin in the whole texts.
void addStaying(std::vector<Anchor>* staying, Lines before, Lines after, Anchor start) {
    FewestChanges fewest(before, after);
    if (fewest.find()) {
        fewest.addStaying(staying, start);
        return;
    }
    // With so many changes, the pieces between lines that certainly stay are compared one by one.
    std::vector<Anchor> anchors = anchorsOf(before, after);
    if (anchors.empty()) {
        return;
    }
    anchors.push_back({before.size(), after.size()});
    Anchor from;
    for (const Anchor& to : anchors) {
        addStaying(staying, before.subspan(from.before, to.before - from.before),
                   after.subspan(from.after, to.after - from.after),
                   {start.before + from.before, start.after + from.after});
        if (to.before < before.size()) {
            staying->push_back({start.before + to.before, start.after + to.after});
        }
        from = {to.before + 1, to.after + 1};
    }
}

/// Appends the changes. `first` equal lines come before `before` and `after`.
void addChanges(std::vector<LineChange>* changes, Lines before, Lines after, std::size_t first) {
    std::vector<bool> staysBefore(before.size());
    std::vector<bool> staysAfter(after.size());
    std::vector<Anchor> staying;
    addStaying(&staying, before, after, {});
    for (const Anchor& each : staying) {
        staysBefore[each.before] = true;
        staysAfter[each.after] = true;
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
