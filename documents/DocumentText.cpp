#include "documents/DocumentText.h"

#include <cstddef>
#include <cstring>
#include <iterator>
#include <sstream>
#include <utility>

#include "common/text/MaskedDocument.h"
#include "documents/DocumentError.h"
#include "json/BoundedReader.h"
#include "json/Escape.h"
#include "json/Numbers.h"
#include "json/Utf8.h"

namespace Norvik::Documents {

namespace {

/// Values are written by recursion: hostile text must not exhaust the stack.
constexpr std::size_t MAX_NESTING = 64;

/// A document for a strict parser. Most are strict already, and are not copied.
class MaskedText {
 public:
  /// Keeps the reference.
  explicit MaskedText(const std::string& text) : text_(text) {
    static const std::string maskBegin = Common::MaskedDocument::Mask('\x80').substr(0, 2);
    if (json::IsUtf8(text) && text.find(maskBegin) == text.npos) return;
    std::istringstream stream(text);
    Common::MaskedDocument masked(stream);
    masked_.assign(std::istreambuf_iterator<char>(&masked), {});
  }
  const std::string& Text() const { return masked_.empty() ? text_ : masked_; }

 private:
  const std::string& text_;
  std::string masked_;
};

/// Whether this is the escape that the agent writes for a byte that is no UTF-8: "\u00e9".
bool IsStrayByte(const std::string& escape) {
  static constexpr char DIGITS[] = "0123456789abcdef";
  return escape.size() == 6 && escape.compare(0, 4, "\\u00") == 0 &&
         std::strchr(DIGITS + 8, escape[4]) && std::strchr(DIGITS, escape[5]);
}

/// Masks such bytes like the irregular sequences, so that they are not taken for the characters of
/// their numbers.
std::string WithMaskedEscapes(const std::string& masked) {
  std::string text;
  std::size_t copied = 0;
  for (auto at = masked.find('\\'); at != std::string::npos; at = masked.find('\\', at + 2)) {
    const std::string escape = masked.substr(at, 6);
    if (!IsStrayByte(escape)) continue;
    text.append(masked, copied, at - copied);
    text +=
        Common::MaskedDocument::Mask(static_cast<char>(std::stoi(escape.substr(2), nullptr, 16)));
    copied = at + escape.size();
  }
  return text.append(masked, copied);
}

std::string MessageOf(const json::ReadError& error, const std::string& masked) {
  using Reason = json::ReadError::Reason;
  if (error.reason == Reason::NestsTooDeep) return "nests deeper than any inventory";
  if (error.reason == Reason::NumberTooLarge) return "holds a number that is too large";
  // Counted in the document, which the masked text is longer than.
  const std::string good = Common::MaskedDocument::Unmask(masked.substr(0, error.byte - 1));
  return "no JSON from byte " + std::to_string(good.size() + 1);
}

template <class Value>
Value Parse(const std::string& masked, typename Value::parser_callback_t watch = nullptr) {
  try {
    return json::ReadBounded<Value>(masked, MAX_NESTING, std::move(watch));
  } catch (const json::ReadError& error) {
    throw DocumentError(MessageOf(error, masked));
  }
}

void AppendText(std::string& out, const std::string& text) {
  out += '"';
  json::AppendEscaped(out, Common::MaskedDocument::Unmask(text));
  out += '"';
}

/// The same text as `json::JSON` writes: the library's writer has other forms of fractions.
void Append(std::string& out, const Json& value) {
  if (value.is_object()) {
    char lead = '{';
    for (const auto& [key, member] : value.items()) {
      out += std::exchange(lead, ',');
      AppendText(out, key);
      out += ':';
      Append(out, member);
    }
    out += lead == '{' ? "{}" : "}";
  } else if (value.is_array()) {
    char lead = '[';
    for (const Json& element : value) {
      out += std::exchange(lead, ',');
      Append(out, element);
    }
    out += lead == '[' ? "[]" : "]";
  } else if (value.is_string()) {
    AppendText(out, value.get_ref<const std::string&>());
  } else {
    out += value.is_number_float() ? json::FloatingText(value.get<double>()) : value.dump();
  }
}

/// Runs an action; the text of a `DocumentError` from it then begins with the document's name.
template <class Action>
auto Naming(const std::string& name, Action action) {
  try {
    return action();
  } catch (const DocumentError& error) {
    throw DocumentError(name + ": " + error.what());
  }
}

}  // namespace

Document ParseDocument(const NamedText& document, Escapes escapes) {
  return {document.name, Naming(document.name, [&] {
            // An error is counted in the text as it is.
            const MaskedText text(document.text);
            const std::string& masked = text.Text();
            Json value = Parse<Json>(masked);
            const bool asRead = escapes == Escapes::Read || masked.find("\\u00") == masked.npos;
            return asRead ? value : Parse<Json>(WithMaskedEscapes(masked));
          })};
}

Document ParseDocument(const NamedText& document, Json::parser_callback_t watch) {
  return {document.name, Naming(document.name, [&] {
            return Parse<Json>(MaskedText(document.text).Text(), std::move(watch));
          })};
}

std::string TextOf(const Json& value) {
  std::string text;
  Append(text, value);
  return text;
}

std::string Indented(const NamedText& document) {
  return Naming(document.name, [&] {
    const auto value = Parse<nlohmann::ordered_json>(MaskedText(document.text).Text());
    return Common::MaskedDocument::Unmask(value.dump(2)) + "\n";
  });
}

void CheckDocument(const Document& document, void (*check)(const Json&)) {
  Naming(document.name, [&] { check(document.value); });
}

std::string Quoted(const std::string& key) { return '"' + key + '"'; }

}  // namespace Norvik::Documents
