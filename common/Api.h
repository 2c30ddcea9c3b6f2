#pragma once

/// Marks what crosses the border between host and module: one type information for both sides.
#define NORVIK_COMMON_API __attribute__((visibility("default")))
