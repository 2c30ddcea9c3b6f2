#pragma once

/// Marks what the common library exports. Host and module then share one definition and one type
/// information, so that exceptions, variants and interfaces of one are understood by the other.
#define NORVIK_COMMON_API __attribute__((visibility("default")))
