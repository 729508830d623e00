#include "model/LargeBlocks.h"

#include <algorithm>
#include <new>

#include <sys/mman.h>

namespace {

constexpr std::size_t largePage = std::size_t{2} << 20;

std::size_t alignmentOf(std::size_t size, std::size_t alignment) {
    return size < largePage ? alignment : std::max(alignment, largePage);
}

} // namespace

LargeBlocks& LargeBlocks::instance() {
    static LargeBlocks blocks;
    return blocks;
}

void* LargeBlocks::do_allocate(std::size_t size, std::size_t alignment) {
    void* const block = ::operator new(size, std::align_val_t(alignmentOf(size, alignment)));
    if (size >= largePage) {
        (void)::madvise(block, size,
                        MADV_HUGEPAGE); // if this is refused, the block still works, only more slowly
    }
    return block;
}

void LargeBlocks::do_deallocate(void* block, std::size_t size, std::size_t alignment) {
    ::operator delete(block, std::align_val_t(alignmentOf(size, alignment)));
}

bool LargeBlocks::do_is_equal(const std::pmr::memory_resource& other) const noexcept {
    return this == &other;
}
