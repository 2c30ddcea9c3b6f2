#include "host/server/AnswerBody.h"

#include <algorithm>
#include <boost/property_tree/json_parser.hpp>
#include <sstream>
#include <stdexcept>

namespace Norvik::Host {

namespace {

constexpr int DEEPEST = 32;

/// Brackets that are open at once, at most. Those inside texts do not count.
int DepthOf(const std::string& text) {
  int depth = 0;
  int deepest = 0;
  bool inText = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') inText = !inText;
    if (inText) {
      if (c == '\\') ++i;
    } else if (c == '{' || c == '[') {
      deepest = std::max(deepest, ++depth);
    } else if (c == '}' || c == ']') {
      --depth;
    }
  }
  return deepest;
}

}  // namespace

boost::property_tree::ptree ParseAnswerBody(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos || text[first] != '{') {
    throw std::runtime_error("the answer is no JSON object");
  }
  if (DepthOf(text) > DEEPEST) throw std::runtime_error("the answer is nested too deep");
  std::istringstream stream(text);
  boost::property_tree::ptree body;
  try {
    boost::property_tree::read_json(stream, body);
  } catch (const boost::property_tree::json_parser_error& error) {
    throw std::runtime_error("the answer is no JSON: " + error.message());
  }
  return body;
}

}  // namespace Norvik::Host
