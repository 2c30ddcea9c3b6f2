#pragma once

#include <string>
#include <string_view>

#include "common/Api.h"

namespace Norvik::Common {

/// Receives the content of an XML text, in its order.
class XmlHandler {
 public:
  virtual ~XmlHandler();
  virtual void StartElement(std::string_view name) = 0;
  /// A piece of the text inside the innermost open element. One text may come in several pieces.
  virtual void Text(std::string_view piece) = 0;
  virtual void EndElement() = 0;

 protected:
  XmlHandler() = default;
  XmlHandler(const XmlHandler&) = default;
  XmlHandler& operator=(const XmlHandler&) = default;
};

/// Parses an XML text in UTF-8, without recursion and without a copy of it. False for a text that
/// is no XML, or that exceeds what the tools of the system write: more than 512 levels, more than a
/// million elements, a mark-up of more than 64 KiB, or entities of its own. The handler has then
/// received what comes before that place. What the handler throws passes through.
bool ReadXml(std::string_view text, XmlHandler& handler);

/// Whether `ReadXml` accepts the whole text, and no element's text has so many lines that joining
/// them one by one would take seconds. Such a text is safe for a parser that builds a tree by
/// recursion, or that copies a text again with each of its pieces.
NORVIK_COMMON_API bool IsReadableXml(std::string_view text);

}  // namespace Norvik::Common
