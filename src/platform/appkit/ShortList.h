#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>

namespace platform {

/// A list of at most `most` values for constant tables: a constant with more values does not compile.
template <class T, std::size_t most>
class ShortList {
  public:
    constexpr ShortList() = default;

    constexpr ShortList(std::initializer_list<T> values) {
        for (const T& value : values) {
            add(value);
        }
    }

    [[nodiscard]] constexpr const T* begin() const { return values_.data(); }

    [[nodiscard]] constexpr const T* end() const { return values_.data() + count_; }

    [[nodiscard]] constexpr ShortList operator+(const ShortList& more) const {
        ShortList both = *this;
        for (const T& value : more) {
            both.add(value);
        }
        return both;
    }

  private:
    constexpr void add(const T& value) { values_.at(count_++) = value; }

    std::array<T, most> values_{};
    std::size_t count_ = 0;
};

} // namespace platform
