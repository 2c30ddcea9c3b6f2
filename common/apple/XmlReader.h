#pragma once

#include <string>
#include <string_view>

#include "common/Api.h"

namespace Norvik::Common {

/// Is told what stands in an XML text, in its order.
class XmlHandler {
 public:
  virtual ~XmlHandler();
  virtual void StartElement(std::string_view name) = 0;
  /// A piece of the text inside the element that was started last and has not ended. A text may
  /// come in several pieces.
  virtual void Text(std::string_view piece) = 0;
  virtual void EndElement() = 0;

 protected:
  XmlHandler() = default;
  XmlHandler(const XmlHandler&) = default;
  XmlHandler& operator=(const XmlHandler&) = default;
};

/// Reads a UTF-8 text without recursion and without a copy of it. False for a text that is no XML,
/// and for one that no tool of the system writes: nested deeper than 512 elements, of more than a
/// million elements, with a mark-up of more than 64 KiB, or with entities of its own. The handler
/// has been told then what stands before that place. What the handler raises comes out of here.
bool ReadXml(std::string_view text, XmlHandler& handler);

/// Whether `ReadXml` reads the text to its end, and no element's text has so many lines that
/// putting them together one by one takes seconds. A reader that builds a tree by recursion, or
/// copies a text with each piece of it, is safe with it then.
NORVIK_COMMON_API bool IsReadableXml(std::string_view text);

}  // namespace Norvik::Common
