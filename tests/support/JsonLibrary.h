#pragma once

#include <nlohmann/json.hpp>
#include <string>

// The JSON library is compiled in JsonLibrary.cpp alone: it would be half of the code of each test.
namespace nlohmann {

extern template class basic_json<>;
extern template class basic_json<ordered_map>;

namespace detail {

using TextInput = iterator_input_adapter<std::string::const_iterator>;

extern template class serializer<json>;
extern template class lexer<json, TextInput>;
extern template class parser<json, TextInput>;
extern template class json_sax_dom_parser<json>;
extern template class json_sax_dom_callback_parser<json>;
extern template class serializer<ordered_json>;
extern template class lexer<ordered_json, TextInput>;
extern template class parser<ordered_json, TextInput>;
extern template class json_sax_dom_parser<ordered_json>;
extern template class json_sax_dom_callback_parser<ordered_json>;

}  // namespace detail
}  // namespace nlohmann
