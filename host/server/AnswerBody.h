#pragma once

#include <boost/property_tree/ptree.hpp>
#include <string>

namespace Norvik::Host {

/// The JSON object of an answer. Raises `std::runtime_error` for what is none, and for one that is
/// nested deeper than any answer: the parser goes as deep as the text does.
boost::property_tree::ptree ParseAnswerBody(const std::string& text);

}  // namespace Norvik::Host
