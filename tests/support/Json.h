#pragma once

#include <boost/property_tree/json_parser.hpp>
#include <sstream>
#include <string>

namespace tests {

inline boost::property_tree::ptree ParseJson(const std::string& text) {
  std::istringstream stream(text);
  boost::property_tree::ptree tree;
  read_json(stream, tree);
  return tree;
}

}  // namespace tests
