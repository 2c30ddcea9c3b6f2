#pragma once

#include <boost/optional/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// Converts an XML property list, as the tools of macOS print it, into a property tree: a key and
/// its value become a child of that name, a dictionary or an array becomes a subtree. Elements of
/// an array have no name. Values stay the texts that they are in the XML (data in Base64, with its
/// line ends); a truth value becomes "true" or "false".
class NORVIK_COMMON_API MacXMLToJSONParser {
 public:
  /// Copies the text and keeps the reference, so that the tree must outlive this object.
  MacXMLToJSONParser(const std::string& xml, boost::property_tree::ptree& out);

  /// Adds the first element at a path, such as "plist.array", to the tree, as a child with the name
  /// of the last part of the path. Adds nothing if the text has no such element or is no XML within
  /// the limits of `ReadXml`; the latter is logged at level 5 unless the text is empty. Does not
  /// throw, whatever the text holds.
  void Parse(const std::string& rootPath);

  /// The first node of a name, at any depth, in document order; empty if no node has it. The
  /// reference is valid as long as the tree.
  static boost::optional<boost::property_tree::ptree&> SearchNode(boost::property_tree::ptree& tree,
                                                                  const std::string& key);

 private:
  std::string xml_;
  boost::property_tree::ptree& out_;
};

}  // namespace Norvik::Common
