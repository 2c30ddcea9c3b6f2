// What a server does with the documents of an agent:
//
//   apply-document FULL NEXT    prints the full document after NEXT, which is incremental or full,
//   and on
//                               standard error what has changed

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "common/LibraryVersion.h"
#include "common/log/Logger.h"
#include "documents/ApplyIncrement.h"
#include "documents/DocumentChain.h"

namespace {

using namespace Norvik::Documents;

/// Without a logger the texts of the log go to standard error.
class NoLog final : public Norvik::Common::Logger {
  void Log(Level, const std::string&, const char*, int, const char*) override {}
};

NamedText Read(const char* file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error(std::string("cannot read ") + file);
  return {file, std::string(std::istreambuf_iterator<char>(stream), {})};
}

void PrintChanges(const DocumentChain::Step& step) {
  static constexpr const char* KINDS[] = {"came", "went", "changed"};
  for (const RecordChange& change : step.changes) {
    std::cerr << change.section << " " << KINDS[change.kind] << " " << TextOf(change.identity)
              << "\n";
  }
}

}  // namespace

int main(int count, char** arguments) try {
  Norvik::Common::RequireLibraryVersion("apply-document");
  Norvik::Common::Logger::SetInstance(std::make_shared<NoLog>());
  if (count != 3) throw std::runtime_error("usage: apply-document FULL NEXT");
  const NamedText full = Read(arguments[1]);
  const NamedText next = Read(arguments[2]);
  DocumentChain chain;
  chain.Follow(full);
  const DocumentChain::Step step = chain.Follow(next);
  PrintChanges(step);
  std::cout << (step.incremental ? ApplyIncrement(full, next) : next.text) << "\n";
  return 0;
} catch (const std::exception& error) {
  std::cerr << "apply-document: " << error.what() << "\n";
  return 1;
}
