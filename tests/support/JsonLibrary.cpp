#include "support/JsonLibrary.h"

namespace nlohmann {

template class basic_json<>;
template class basic_json<ordered_map>;

namespace detail {

template class serializer<json>;
template class lexer<json, TextInput>;
template class parser<json, TextInput>;
template class json_sax_dom_parser<json>;
template class json_sax_dom_callback_parser<json>;
template class serializer<ordered_json>;
template class lexer<ordered_json, TextInput>;
template class parser<ordered_json, TextInput>;
template class json_sax_dom_parser<ordered_json>;
template class json_sax_dom_callback_parser<ordered_json>;

}  // namespace detail
}  // namespace nlohmann
