// SPDX-License-Identifier: MIT
#include "Allocations.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include <link.h>

namespace zr::bench {

namespace {

using Range = std::pair<std::uintptr_t, std::uintptr_t>;

std::atomic<std::size_t> counted{0};
std::atomic<bool> ready{false};

std::vector<Range>& ownCode() {
    static auto& ranges = *new std::vector<Range>;
    return ranges;
}

int addRanges(dl_phdr_info* info, std::size_t, void*) {
    const std::string_view name = info->dlpi_name; // empty for the program itself
    if (!name.empty() && name.find("libZRUIKit") == std::string_view::npos) return 0;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const auto& header = info->dlpi_phdr[i];
        if (header.p_type != PT_LOAD || (header.p_flags & PF_X) == 0) continue;
        const std::uintptr_t begin = info->dlpi_addr + header.p_vaddr;
        ownCode().emplace_back(begin, begin + header.p_memsz);
    }
    return 0;
}

void count(const void* caller) {
    if (!ready.load(std::memory_order_relaxed)) return;
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    for (const auto& [begin, end] : ownCode())
        if (address >= begin && address < end) counted.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

void resetAllocations() {
    if (!ready) dl_iterate_phdr(addRanges, nullptr);
    ready = true;
    counted = 0;
}

std::size_t allocations() { return counted; }

} // namespace zr::bench

void* operator new(std::size_t size) {
    zr::bench::count(__builtin_return_address(0));
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
