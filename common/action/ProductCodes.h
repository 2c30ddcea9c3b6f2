#pragma once

namespace Norvik::Common {

/// Products that a host can load a module of.
enum ProductCodes : unsigned int { PRODUCT_KOB = 1 };

}  // namespace Norvik::Common
