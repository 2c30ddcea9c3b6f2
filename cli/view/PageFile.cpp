#include "cli/view/PageFile.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <stdexcept>
#include <string_view>

#include "cli/view/PageText.h"
#include "cli/view/ViewerBundle.h"
#include "host/recording/RemovalOnDeath.h"
#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Cli {

namespace {

constexpr std::size_t PIECE = 1 << 20;

class Writer {
 public:
  explicit Writer(const Platform::FileDescriptor& file) : file_(file) {}

  void Put(const std::string& text) {
    Platform::WriteAll(file_, text.data(), text.size());
    bytes_ += text.size();
  }
  void PutJson(std::string_view json) {
    std::string piece;
    while (!json.empty()) {
      std::size_t length = std::min(json.size(), PIECE);
      // Not within a character.
      while (length < json.size() && (json[length] & 0x80) != 0) ++length;
      piece.clear();
      AppendForScript(piece, json.substr(0, length));
      Put(piece);
      json.remove_prefix(length);
    }
  }
  std::uintmax_t Bytes() const { return bytes_; }

 private:
  const Platform::FileDescriptor& file_;
  std::uintmax_t bytes_ = 0;
};

std::string HeadOf(const std::string& title, const std::string& script, const std::string& style) {
  return "<!doctype html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
         "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src " +
         HashSource(script) + "; style-src " + HashSource(style) +
         "; img-src data:; base-uri 'none'; form-action 'none'\">\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
         "<meta name=\"color-scheme\" content=\"light dark\">\n<title>" +
         ForHtml(title) + "</title>\n<style>" + style +
         "</style></head><body>\n<noscript>This page shows its inventory with JavaScript, which is "
         "off in this browser.</noscript>\n<main id=\"view\"></main>\n";
}

void WriteTo(Writer& writer, const PageContent& content) {
  constexpr char END[] = "</script>\n";
  const std::string script = ViewerScript();
  writer.Put(HeadOf(content.title, script, ViewerStyle()));
  writer.Put("<script type=\"application/json\" id=\"norvik-page\">");
  writer.PutJson(content.information);
  writer.Put(END);
  for (const std::string* document : content.documents) {
    writer.Put("<script type=\"application/json\" class=\"norvik-document\">");
    writer.PutJson(*document);
    writer.Put(END);
  }
  writer.Put("<script>" + script + END + "</body></html>\n");
}

}  // namespace

std::uintmax_t WritePage(const boost::filesystem::path& file, const PageContent& content) {
  try {
    Platform::ReplacementFile target(file.string());
    const Host::RemovalOnDeath removal(target.Path());
    Writer writer(target.Descriptor());
    WriteTo(writer, content);
    target.Commit();
    return writer.Bytes();
  } catch (const std::exception& error) {
    throw std::runtime_error("cannot write " + file.string() + ": " + error.what());
  }
}

}  // namespace Norvik::Cli
