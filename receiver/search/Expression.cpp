#include "receiver/search/Expression.h"

#include <algorithm>
#include <array>
#include <vector>

#include "documents/SectionKeys.h"

namespace Norvik::Receiver {

namespace {

constexpr std::size_t MAX_LENGTH = 4096;
constexpr int MAX_NESTING = 32;

enum class Kind { Word, Text, Number, Operator, End };

struct Token {
  Kind kind = Kind::End;
  std::string text;
  std::size_t at = 0;
};

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

[[noreturn]] void Fail(std::size_t at, const std::string& reason) {
  throw ExpressionError("the expression is wrong at character " + std::to_string(at + 1) + ": " +
                        reason);
}

class Reader {
 public:
  explicit Reader(const std::string& text) : text_(text) {}

  Token Next() {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
    Token token;
    token.at = at_;
    if (at_ == text_.size()) return token;
    if (text_[at_] == '"') {
      token.kind = Kind::Text;
      token.text = Quoted();
    } else if (IsLetter(text_[at_])) {
      token.kind = Kind::Word;
      token.text = Taken([](char c) { return IsLetter(c) || IsDigit(c) || c == '.'; });
    } else if (IsDigit(text_[at_])) {
      token.kind = Kind::Number;
      token.text = Taken([](char c) { return IsDigit(c) || c == '.'; });
    } else {
      token.kind = Kind::Operator;
      token.text = Operator();
    }
    return token;
  }

 private:
  template <class Accepts>
  std::string Taken(Accepts accepts) {
    const auto begin = text_.begin() + static_cast<std::ptrdiff_t>(at_);
    const auto end = std::find_if_not(begin, text_.end(), accepts);
    at_ += static_cast<std::size_t>(end - begin);
    return {begin, end};
  }
  std::string Quoted() {
    std::string value;
    const std::size_t begin = at_++;
    for (; at_ < text_.size() && text_[at_] != '"'; ++at_) {
      if (text_[at_] == '\\' && at_ + 1 < text_.size()) ++at_;
      value += text_[at_];
    }
    if (at_ == text_.size()) Fail(begin, "the quotation mark is not closed");
    ++at_;
    return value;
  }
  std::string Operator() {
    static constexpr std::array<const char*, 10> OPERATORS = {"!=", "!~", "<=", ">=", "=",
                                                              "~",  "<",  ">",  "(",  ")"};
    for (const char* known : OPERATORS) {
      std::string candidate = known;
      if (text_.compare(at_, candidate.size(), candidate) != 0) continue;
      at_ += candidate.size();
      return candidate;
    }
    Fail(at_, "a section, a value or an operator is expected");
  }

  const std::string& text_;
  std::size_t at_ = 0;
};

void Append(Condition& to, const std::string& separator, const Condition& part) {
  if (!to.statement.empty()) to.statement += separator;
  to.statement += part.statement;
  to.values.insert(to.values.end(), part.values.begin(), part.values.end());
}

/// "%value%" with what LIKE would take as a wildcard escaped.
std::string PatternOf(const std::string& value) {
  std::string pattern = "%";
  for (const char c : value) {
    if (c == '%' || c == '_' || c == '!') pattern += '!';
    pattern += c;
  }
  return pattern + "%";
}

/// Of a record `r`, whose property has been read.
Condition TextComparison(const Token& property, const Token& comparison, const std::string& value) {
  const std::string& name = property.text;
  if (comparison.text == "=" || comparison.text == "!=") {
    return {"{text of property} " + comparison.text + " ?", {name, value}};
  }
  if (comparison.text == "~" || comparison.text == "!~") {
    const std::string negation = comparison.text == "~" ? "" : "NOT ";
    return {"{text of property} " + negation + "{contains} ? ESCAPE '!'", {name, PatternOf(value)}};
  }
  Fail(comparison.at, "a text is compared with =, !=, ~ or !~");
}

Condition NumberComparison(const Token& property, const Token& comparison, const Token& value) {
  if (comparison.text.find('~') != std::string::npos) {
    Fail(comparison.at, "~ and !~ need a text in quotation marks");
  }
  if (std::count(value.text.begin(), value.text.end(), '.') > 1 || value.text.size() > 30) {
    Fail(value.at, "no number; a text is in quotation marks");
  }
  return {
      "({is number} AND {number of property} " + comparison.text + " CAST(? AS DOUBLE PRECISION))",
      {property.text, property.text, value.text}};
}

/// Comparisons of one section, which one record must meet.
struct SectionComparisons {
  std::string section;
  Condition record;
};

Condition OfSection(const SectionComparisons& comparisons) {
  Condition condition{"a.agent IN (SELECT r.agent FROM records r WHERE r.section=? AND ",
                      {comparisons.section}};
  Append(condition, "", comparisons.record);
  condition.statement += ")";
  return condition;
}

class Parser {
 public:
  explicit Parser(const std::string& text) : reader_(text) { Advance(); }

  Condition Parse() {
    Condition condition = Alternatives(0);
    if (token_.kind != Kind::End) Fail(token_.at, "\"and\", \"or\" or the end is expected");
    return condition;
  }

 private:
  void Advance() { token_ = reader_.Next(); }
  bool Take(Kind kind, const char* text) {
    if (token_.kind != kind || token_.text != text) return false;
    Advance();
    return true;
  }

  Condition Alternatives(int depth) {
    Condition all;
    do {
      Append(all, " OR ", Conjunction(depth));
    } while (Take(Kind::Word, "or"));
    return {"(" + all.statement + ")", all.values};
  }

  Condition Conjunction(int depth) {
    Condition all;
    std::vector<SectionComparisons> sections;
    do {
      if (Take(Kind::Word, "not")) {
        Condition term = Negated(depth);
        term.statement = "NOT " + term.statement;
        Append(all, " AND ", term);
      } else if (token_.text == "(" && token_.kind == Kind::Operator) {
        Append(all, " AND ", InBrackets(depth));
      } else {
        AddComparison(sections);
      }
    } while (Take(Kind::Word, "and"));
    for (const SectionComparisons& section : sections) {
      Append(all, " AND ", OfSection(section));
    }
    return {"(" + all.statement + ")", all.values};
  }

  Condition Negated(int depth) {
    if (token_.text == "(" && token_.kind == Kind::Operator) return InBrackets(depth);
    std::vector<SectionComparisons> sections;
    AddComparison(sections);
    return OfSection(sections.front());
  }

  Condition InBrackets(int depth) {
    const std::size_t at = token_.at;
    if (depth == MAX_NESTING) Fail(at, "there are too many brackets");
    Advance();
    Condition condition = Alternatives(depth + 1);
    if (!Take(Kind::Operator, ")")) Fail(at, "the bracket is not closed");
    return condition;
  }

  void AddComparison(std::vector<SectionComparisons>& sections) {
    Token property = token_;
    const auto dot = property.text.find('.');
    if (property.kind != Kind::Word || dot == std::string::npos ||
        dot + 1 == property.text.size() || property.text.find('.', dot + 1) != std::string::npos) {
      Fail(property.at, "SECTION.PROPERTY is expected, as in software.name");
    }
    const std::string section = property.text.substr(0, dot);
    static const std::vector<std::string> known = Documents::SectionKeys();
    if (std::find(known.begin(), known.end(), section) == known.end()) {
      Fail(property.at, "no document has a section " + section);
    }
    property.text.erase(0, dot + 1);
    Advance();
    const Token comparison = token_;
    if (comparison.kind != Kind::Operator || comparison.text == "(" || comparison.text == ")") {
      Fail(comparison.at, "one of = != ~ !~ < <= > >= is expected");
    }
    Advance();
    const Condition condition = ComparisonWith(property, comparison);
    Advance();
    auto found = std::find_if(sections.begin(), sections.end(),
                              [&](const auto& each) { return each.section == section; });
    if (found == sections.end()) found = sections.insert(sections.end(), {section, {}});
    Append(found->record, " AND ", condition);
  }

  Condition ComparisonWith(const Token& property, const Token& comparison) const {
    if (token_.kind == Kind::Text) return TextComparison(property, comparison, token_.text);
    if (token_.kind == Kind::Number) return NumberComparison(property, comparison, token_);
    if (token_.kind == Kind::Word && (token_.text == "true" || token_.text == "false")) {
      if (comparison.text != "=" && comparison.text != "!=") {
        Fail(comparison.at, "true and false are compared with = or !=");
      }
      return {"{text of property} " + comparison.text + " '{" + token_.text + "}'",
              {property.text}};
    }
    Fail(token_.at, "a text in quotation marks, a number, true or false is expected");
  }

  Reader reader_;
  Token token_;
};

}  // namespace

Condition ConditionOf(const std::string& expression) {
  if (expression.size() > MAX_LENGTH) Fail(MAX_LENGTH, "it is too long");
  if (expression.find('\0') != std::string::npos) Fail(expression.find('\0'), "a NUL");
  return Parser(expression).Parse();
}

}  // namespace Norvik::Receiver
