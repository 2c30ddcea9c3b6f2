#include "common/commands/CommandWords.h"

#include <cstddef>
#include <utility>

namespace Norvik::Common {

namespace {

constexpr char WORD_BLANKS[] = " \t\n\r\v\f";

/// Reads a line word by word. Each operation moves past what it reads, and returns false if a quote
/// or a backslash is left open.
class WordReader {
 public:
  explicit WordReader(const std::string& line) : line_(line) {}

  bool ReadAll() {
    while (SkipBlanks()) {
      word_.clear();
      if (!ReadWord()) return false;
      words_.push_back(std::move(word_));
    }
    return true;
  }

  std::vector<std::string> TakeWords() { return std::move(words_); }

 private:
  bool SkipBlanks() {
    at_ = line_.find_first_not_of(WORD_BLANKS, at_);
    return at_ != std::string::npos;
  }

  bool ReadWord() {
    static const std::string blanks = WORD_BLANKS;
    while (at_ < line_.size() && blanks.find(line_[at_]) == std::string::npos) {
      const char c = line_[at_++];
      if (c == '\'') {
        if (!ReadSingleQuoted()) return false;
      } else if (c == '"') {
        if (!ReadDoubleQuoted()) return false;
      } else if (c == '\\') {
        if (!ReadEscaped("")) return false;
      } else {
        word_ += c;
      }
    }
    return true;
  }

  bool ReadSingleQuoted() {
    const std::size_t end = line_.find('\'', at_);
    if (end == std::string::npos) return false;
    word_.append(line_, at_, end - at_);
    at_ = end + 1;
    return true;
  }

  bool ReadDoubleQuoted() {
    while (at_ < line_.size()) {
      const char c = line_[at_++];
      if (c == '"') return true;
      if (c != '\\') {
        word_ += c;
      } else if (!ReadEscaped("$`\"\\\n")) {
        return false;
      }
    }
    return false;
  }

  /// Reads the character after a backslash. The backslash stays unless the character is one of
  /// `special`, where empty means all; of an escaped newline nothing stays.
  bool ReadEscaped(const std::string& special) {
    if (at_ == line_.size()) return false;
    const char c = line_[at_++];
    if (!special.empty() && special.find(c) == std::string::npos) word_ += '\\';
    if (c != '\n') word_ += c;
    return true;
  }

  const std::string& line_;
  std::size_t at_ = 0;
  std::string word_;
  std::vector<std::string> words_;
};

}  // namespace

boost::optional<std::vector<std::string>> SplitCommandWords(const std::string& line) {
  WordReader reader(line);
  if (!reader.ReadAll()) return boost::none;
  return reader.TakeWords();
}

}  // namespace Norvik::Common
