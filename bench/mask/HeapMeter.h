#pragma once
// Bytes on the heap, counted by this executable's own malloc family (which hands every request
// to the C library's allocator), with the peak since the last reset.

#include <cstddef>

namespace nxr::bench::HeapMeter {

std::size_t inUse();
std::size_t peak();
// Starts a new peak from what is in use now.
void resetPeak();

} // namespace nxr::bench::HeapMeter
