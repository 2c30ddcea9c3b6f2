#include "cli/view/PageText.h"

#include <sodium.h>

#include <algorithm>
#include <boost/algorithm/string/replace.hpp>
#include <cstddef>

#include "common/text/Text.h"
#include "json/Utf8.h"

namespace Norvik::Cli {

namespace {

constexpr std::size_t LONGEST_HOST = 64;

bool EndsElements(char32_t code) {
  return code == '<' || code == '>' || code == '&' || code == 0x2028 || code == 0x2029;
}

void AppendEscape(std::string& out, char32_t code) {
  static constexpr char DIGITS[] = "0123456789abcdef";
  out += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) out += DIGITS[code >> shift & 0xF];
}

}  // namespace

void AppendForScript(std::string& out, std::string_view json) {
  std::size_t copied = 0;
  for (std::size_t at = 0; at < json.size();) {
    const json::Utf8Step step = json::Utf8StepAt(json, at);
    const std::size_t next = at + step.length;
    const bool isCharacter = step.kind == json::Utf8Step::Kind::Character;
    if (!isCharacter || EndsElements(step.code)) {
      out.append(json, copied, at - copied);
      copied = next;
      if (isCharacter) AppendEscape(out, step.code);
      for (; !isCharacter && at < next; ++at) {
        AppendEscape(out, static_cast<unsigned char>(json[at]));
      }
    }
    at = next;
  }
  out.append(json, copied, json.size() - copied);
}

std::string ForHtml(const std::string& text) {
  std::string escaped = Common::EscapeControls(text);
  boost::replace_all(escaped, "&", "&amp;");
  boost::replace_all(escaped, "<", "&lt;");
  boost::replace_all(escaped, ">", "&gt;");
  return escaped;
}

std::string HashSource(const std::string& content) {
  unsigned char hash[crypto_hash_sha256_BYTES];
  ::crypto_hash_sha256(hash, reinterpret_cast<const unsigned char*>(content.data()),
                       content.size());
  constexpr int VARIANT = sodium_base64_VARIANT_ORIGINAL;
  std::string base64(::sodium_base64_encoded_len(sizeof(hash), VARIANT), '\0');
  ::sodium_bin2base64(base64.data(), base64.size(), hash, sizeof(hash), VARIANT);
  base64.pop_back();  // the NUL
  return "'sha256-" + base64 + "'";
}

std::string PageNameOf(const std::string& host) {
  static constexpr std::string_view PLAIN =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
  std::string name = host.empty() ? "inventory" : host.substr(0, LONGEST_HOST);
  std::replace_if(
      name.begin(), name.end(), [](char c) { return PLAIN.find(c) == PLAIN.npos; }, '_');
  return "norvik-" + name + ".html";
}

}  // namespace Norvik::Cli
