#include <gmock/gmock.h>

#include "module/Actions/Mac/ConnectionText.h"
#include "module/Actions/Mac/ProcessText.h"
#include "module/Actions/Mac/ShareText.h"
#include "support/LogCapture.h"

namespace Norvik::KOB {
namespace {

TEST(ToolOutput, MayBeCutAnywhere) {
  const Tests::LogCapture log;
  const std::string connections =
      "Active Internet connections (including servers)\n"
      "Proto Recv-Q Send-Q  Local Address          Foreign Address        (state)\n"
      "tcp4       0      0  192.168.1.2.52034      192.0.2.10.5223        ESTABLISHED\n"
      "udp4       0      0  *.5353                 *.*                    \n"
      "Registered kernel control modules\n";
  const std::string shares = "name:\tbooks\npath:\t/b\nname:\tkept\npath:\t/k\n";
  for (std::size_t end = 0; end <= connections.size(); ++end) {
    const auto rows = ReadConnections(connections.substr(0, end));
    ASSERT_LE(rows.size(), 2U);
    for (const auto& row : rows) EXPECT_THAT(row.size(), testing::AnyOf(7U, 8U)) << end;
  }
  for (std::size_t end = 0; end <= shares.size(); ++end) {
    const std::string rest = WithoutShare(shares.substr(0, end), "books");
    EXPECT_EQ(rest.find("/b"), std::string::npos) << end;
  }
  EXPECT_EQ(WithoutShare(shares, "books"), "name:\tkept\npath:\t/k\n");
  const std::string share = "%CPU\n  1.5\n";
  for (std::size_t end = 0; end <= share.size(); ++end) {
    EXPECT_THAT(ReadProcessorShare(share.substr(0, end)),
                testing::AnyOf("100", "", "1", "1.", "1.5"));
  }
}

}  // namespace
}  // namespace Norvik::KOB
