#include "common/apple/XmlReader.h"

#include <expat.h>

#include <climits>
#include <cstddef>
#include <exception>
#include <memory>
#include <type_traits>

namespace Norvik::Common {

namespace {

constexpr std::size_t MAX_DEPTH = 512;
constexpr std::size_t MAX_ELEMENTS = 1000000;
constexpr int MAX_MARKUP = 64 * 1024;
constexpr std::size_t MAX_COPIED = std::size_t{256} << 20;

struct FreeParser {
  void operator()(XML_Parser parser) const { ::XML_ParserFree(parser); }
};
using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser>;

/// One run of the parser. Connects the handler with the C code that calls it.
class Reading {
 public:
  Reading(XML_Parser parser, XmlHandler& handler) : parser_(parser), handler_(handler) {
    ::XML_SetUserData(parser, this);
    ::XML_SetElementHandler(parser, &Reading::OnStart, &Reading::OnEnd);
    ::XML_SetCharacterDataHandler(parser, &Reading::OnText);
    ::XML_SetCommentHandler(parser, &Reading::OnComment);
    ::XML_SetProcessingInstructionHandler(parser, &Reading::OnInstruction);
    ::XML_SetStartDoctypeDeclHandler(parser, &Reading::OnDoctype);
  }

  bool Read(std::string_view text) {
    if (text.size() > INT_MAX) return false;
    // All at once: a mark-up that spans several pieces would be parsed again with each piece.
    const auto status = ::XML_Parse(parser_, text.data(), static_cast<int>(text.size()), XML_TRUE);
    if (failure_) std::rethrow_exception(failure_);
    return status == XML_STATUS_OK;
  }

 private:
  /// Does a step, unless the parser has been stopped, after which some calls still come. No
  /// exception may pass through the C code.
  template <class Step>
  void Do(Step step) {
    if (stopped_) return;
    try {
      step();
    } catch (...) {
      failure_ = std::current_exception();
      Stop();
    }
  }
  void Stop() {
    stopped_ = true;
    ::XML_StopParser(parser_, XML_FALSE);
  }
  /// Stops the parser if the present mark-up is too long.
  void Measure() {
    if (::XML_GetCurrentByteCount(parser_) > MAX_MARKUP) Stop();
  }
  void Start(const XML_Char* name) {
    if (++depth_ > MAX_DEPTH || ++elements_ > MAX_ELEMENTS) Stop();
    Measure();
    Do([&] { handler_.StartElement(name); });
  }
  void End() {
    --depth_;
    Measure();
    Do([&] { handler_.EndElement(); });
  }

  static Reading& Of(void* data) { return *static_cast<Reading*>(data); }
  static void OnStart(void* data, const XML_Char* name, const XML_Char**) { Of(data).Start(name); }
  static void OnEnd(void* data, const XML_Char*) { Of(data).End(); }
  static void OnText(void* data, const XML_Char* text, int length) {
    const std::string_view piece(text, static_cast<std::size_t>(length));
    Of(data).Do([&] { Of(data).handler_.Text(piece); });
  }
  static void OnComment(void* data, const XML_Char*) { Of(data).Measure(); }
  static void OnInstruction(void* data, const XML_Char*, const XML_Char*) { Of(data).Measure(); }
  static void OnDoctype(void* data, const XML_Char*, const XML_Char*, const XML_Char*,
                        int hasInternalSubset) {
    if (hasInternalSubset) Of(data).Stop();
  }

  XML_Parser parser_;
  XmlHandler& handler_;
  std::size_t depth_ = 0;
  std::size_t elements_ = 0;
  bool stopped_ = false;
  std::exception_ptr failure_;
};

/// Counts the bytes that a parser moves if it copies a text again with each of its pieces. Every
/// line is a piece.
class CopyingReader final : public XmlHandler {
 public:
  void StartElement(std::string_view) override { length_ = 0; }
  void Text(std::string_view piece) override {
    length_ += piece.size();
    copied_ += length_;
  }
  void EndElement() override { length_ = 0; }
  std::size_t Copied() const { return copied_; }

 private:
  std::size_t length_ = 0;  ///< of the present text
  std::size_t copied_ = 0;
};

}  // namespace

XmlHandler::~XmlHandler() = default;

bool ReadXml(std::string_view text, XmlHandler& handler) {
  const Parser parser(::XML_ParserCreate("UTF-8"));
  return parser && Reading(parser.get(), handler).Read(text);
}

bool IsReadableXml(std::string_view text) {
  CopyingReader reader;
  return ReadXml(text, reader) && reader.Copied() <= MAX_COPIED;
}

}  // namespace Norvik::Common
