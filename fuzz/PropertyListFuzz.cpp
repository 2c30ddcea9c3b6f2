#include <boost/property_tree/ptree.hpp>

#include "Fuzz.h"
#include "common/apple/MacXMLToJSONParser.h"

/// Parses the input as the report of a tool. For any input: parsing does not throw, the tree has at
/// most one child, and the search stays within the tree.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Norvik::Fuzz::Quiet quiet;
  const std::string text(data, data + size);
  for (const char* const path : {"plist.array", "plist"}) {
    boost::property_tree::ptree tree;
    Norvik::Common::MacXMLToJSONParser parser(text, tree);
    parser.Parse(path);
    if (tree.size() > 1) std::abort();
    parser.SearchNode(tree, "system-firmware-version");
  }
  return 0;
}
