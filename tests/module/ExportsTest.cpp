#include "common/commands/CommandRunner.h"

#include "support/Test.h"

namespace Norvik::KOB {
namespace {

TEST(Exports, TheLibraryOffersOneFunction) {
  const std::string library = NORVIK_MODULE;
#ifdef __APPLE__
  const std::string tool = "nm -gU ", expected = "_GetAgentModuleObject";
#else
  const std::string tool = "nm -D --defined-only ", expected = "GetAgentModuleObject";
#endif
  ASSERT_TRUE(boost::filesystem::exists(library)) << library;
  std::istringstream lines(Common::CommandRunner::ExecCommand(tool + "'" + library + "'"));
  std::vector<std::string> names;
  for (std::string address, kind, name; lines >> address >> kind >> name;) names.push_back(name);
  EXPECT_THAT(names, testing::ElementsAre(expected));
}

}  // namespace
}  // namespace Norvik::KOB
