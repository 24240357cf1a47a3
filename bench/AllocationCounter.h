#pragma once

// The benchmark program replaces the global operator new, so a benchmark can tell what it allocated.

#include <cstdint>

uint64_t AllocationCount();
uint64_t AllocatedBytes();
