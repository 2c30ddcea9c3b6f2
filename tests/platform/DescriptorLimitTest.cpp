#include "platform/DescriptorLimit.h"

#include <sys/resource.h>

#include "support/Test.h"

namespace {

using namespace Norvik;

TEST(DescriptorLimit, IsRaisedAsFarAsTheSystemAllowsAndNeverLowered) {
  rlimit former{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &former), 0);
  const Tests::Scope restore([&] { ::setrlimit(RLIMIT_NOFILE, &former); });
  const rlimit low{100, former.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
  for (const std::size_t wanted : {200u, 150u}) {
    EXPECT_EQ(Platform::RaiseDescriptorLimit(wanted), 200u);
    rlimit now{};
    ::getrlimit(RLIMIT_NOFILE, &now);
    EXPECT_EQ(now.rlim_cur, 200u);
  }
  if (former.rlim_max != RLIM_INFINITY && former.rlim_max < 1'000'000'000) {
    EXPECT_EQ(Platform::RaiseDescriptorLimit(2'000'000'000), former.rlim_max);
  }
}

}  // namespace
