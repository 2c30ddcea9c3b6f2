#pragma once

#include <boost/optional/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// Turns an XML property list, as the tools of macOS print it, into a property tree: a key and its
/// value become a child of that name, a dictionary or an array a subtree. Elements of an array have
/// no name. Values stay texts as they stand there, data in its Base64, line ends included; a truth
/// value is "true" or "false".
class NORVIK_COMMON_API MacXMLToJSONParser {
 public:
  /// Keeps a copy of the text, and the reference: the tree must live as long as this.
  MacXMLToJSONParser(const std::string& xml, boost::property_tree::ptree& out);

  /// Adds the first element at a path, as "plist.array", to the tree as a child named by the last
  /// part of the path. Adds nothing if the text has no such element or is no whole XML; a text that
  /// is neither empty nor XML is logged at level 5. Never raises for what the text holds.
  void Parse(const std::string& rootPath);

  /// The first node of a name anywhere in the tree, in document order; none without one. It lives
  /// as long as the tree.
  static boost::optional<boost::property_tree::ptree&> SearchNode(boost::property_tree::ptree& tree,
                                                                  const std::string& key);

 private:
  std::string xml_;
  boost::property_tree::ptree& out_;
};

}  // namespace Norvik::Common
