#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Replacements and insertions in one text, collected in any order and then applied at once. Offsets are
/// those of the text as it was.
class TextEdits {
  public:
    /// `lineBreak` is what ends the text's lines.
    explicit TextEdits(std::string_view lineBreak) : lineBreak_(lineBreak) {}

    void replace(std::size_t begin, std::size_t end, std::string replacement) {
        edits_.push_back({begin, end, std::move(replacement), false});
    }

    void remove(std::size_t begin, std::size_t end) { replace(begin, end, ""); }

    /// Whether that is removed already.
    [[nodiscard]] bool removes(std::size_t begin, std::size_t end) const;

    void insert(std::size_t place, std::string text) { replace(place, place, std::move(text)); }

    /// The text begins on a line of its own.
    void insertLines(std::size_t place, std::string text) {
        edits_.push_back({place, place, std::move(text), true});
    }

    /// The same, before all other insertions at that place.
    void insertLinesFirst(std::size_t place, std::string text) {
        edits_.insert(edits_.begin(), {place, place, std::move(text), true});
    }

    /// `text` with the line breaks of the text that is edited.
    [[nodiscard]] std::string withLineBreaks(std::string_view text) const;
    /// `text` with the edits. At the same place insertions come first, in the order in which they were made.
    /// What lies inside a longer replacement is left out.
    [[nodiscard]] std::string applied(std::string_view text) const;

  private:
    /// Replaces [begin, end).
    struct Edit {
        std::size_t begin = 0;
        std::size_t end = 0;
        std::string replacement;
        bool isOwnLine = false;

        [[nodiscard]] bool isInsertion() const { return begin == end; }
    };

    [[nodiscard]] static bool isBefore(const Edit& one, const Edit& other);

    std::string lineBreak_;
    std::vector<Edit> edits_;
};

/// Whether the text's last line has a line break.
[[nodiscard]] inline bool isEnded(std::string_view text) {
    return text.ends_with('\n') || text.ends_with('\r');
}
