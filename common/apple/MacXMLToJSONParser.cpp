#include "common/apple/MacXMLToJSONParser.h"

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/property_tree/ptree.hpp>
#include <string_view>
#include <utility>
#include <vector>

#include "common/apple/XmlReader.h"
#include "common/log/Logger.h"

namespace Norvik::Common {

namespace {

using boost::property_tree::ptree;

/// Fills a tree from the element at a path, while the XML is read.
class TreeBuilder final : public XmlHandler {
 public:
  TreeBuilder(const std::string& rootPath, ptree& root) : root_(root) {
    boost::algorithm::split(path_, rootPath, boost::algorithm::is_any_of("."));
  }

  bool HasFoundRoot() const { return found_; }
  const std::string& RootName() const { return path_.back(); }

  void StartElement(std::string_view name) override {
    if (open_.empty()) {
      Search(name);
    } else if (open_.back().kind == Kind::Key || open_.back().kind == Kind::Nothing) {
      open_.push_back({Kind::Nothing, nullptr, {}});
    } else if (name == "key" && open_.back().kind == Kind::Dictionary) {
      open_.back().key.clear();
      open_.push_back({Kind::Key, nullptr, {}});
    } else {
      StartValue(name);
    }
  }

  void Text(std::string_view piece) override {
    if (open_.empty()) return;
    if (open_.back().kind == Kind::Value) open_.back().node->data().append(piece);
    if (open_.back().kind == Kind::Key) open_[open_.size() - 2].key.append(piece);
  }

  void EndElement() override {
    if (!open_.empty()) {
      open_.pop_back();
      if (!open_.empty()) return;
    }
    --depth_;
    matched_ = std::min(matched_, depth_);
  }

 private:
  enum class Kind { Dictionary, Array, Value, Key, Nothing };
  struct Element {
    Kind kind;
    ptree* node;      ///< of a value
    std::string key;  ///< the last key of a dictionary
  };

  /// Checks whether an element outside the root is on the path to it, or is the root itself.
  void Search(std::string_view name) {
    const bool onPath = !found_ && depth_ == matched_ && name == path_[matched_];
    ++depth_;
    if (!onPath || ++matched_ < path_.size()) return;
    found_ = true;
    open_.push_back({name == "dict" ? Kind::Dictionary : Kind::Array, &root_, {}});
  }

  void StartValue(std::string_view name) {
    Element& parent = open_.back();
    ptree& node = parent.node->push_back({std::exchange(parent.key, {}), ptree()})->second;
    if (name == "true" || name == "false") node.data() = name;
    const Kind kind = name == "dict"    ? Kind::Dictionary
                      : name == "array" ? Kind::Array
                                        : Kind::Value;
    open_.push_back({kind, &node, {}});
  }

  std::vector<std::string> path_;
  ptree& root_;
  std::size_t matched_ = 0;  ///< parts of the path that are open now
  std::size_t depth_ = 0;    ///< number of open elements, without those inside the root
  bool found_ = false;
  std::vector<Element> open_;  ///< the root and the open elements inside it
};

bool IsForbidden(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

}  // namespace

MacXMLToJSONParser::MacXMLToJSONParser(const std::string& xml, ptree& out) : xml_(xml), out_(out) {
  // Some devices report serial numbers with control characters, which XML forbids.
  std::replace_if(xml_.begin(), xml_.end(), IsForbidden, ' ');
}

void MacXMLToJSONParser::Parse(const std::string& rootPath) {
  ptree root;
  TreeBuilder builder(rootPath, root);
  if (!ReadXml(xml_, builder)) {
    if (!xml_.empty()) NORVIK_DETAIL("A tool's output is no property list");
  } else if (builder.HasFoundRoot()) {
    out_.push_back({builder.RootName(), ptree()})->second.swap(root);
  }
}

boost::optional<ptree&> MacXMLToJSONParser::SearchNode(ptree& tree, const std::string& key) {
  for (auto& [name, node] : tree) {
    if (name == key) return node;
    if (const auto found = SearchNode(node, key)) return found;
  }
  return boost::none;
}

}  // namespace Norvik::Common
