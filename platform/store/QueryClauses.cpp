#include "platform/store/QueryClauses.h"

#include <array>
#include <cstddef>

#include "platform/runtime/Text.h"
#include "platform/store/Dialect.h"
#include "platform/store/Tokenizer.h"

namespace store {
namespace {

using dialect::Token;
using dialect::TokenKind;

constexpr std::string_view kSelect = "SELECT";

/// The clauses in the order in which a query may have them.
enum Clause : std::size_t { kSelection, kWhere, kGroupBy, kHaving, kOrderBy, kClauses };

/// The tokens of a query, whose pieces can be written again with the literals as they were.
class Written {
 public:
  explicit Written(std::string_view sql)
      : key_(dialect::KeyOf(sql, literals_)), tokens_(dialect::Tokenize(key_)) {}

  const std::vector<Token>& Tokens() const { return tokens_; }

  /// The tokens from `first` up to `last`, without blanks at both ends.
  std::string Piece(std::size_t first, std::size_t last) const {
    std::size_t literal = 0;
    for (std::size_t i = 0; i < first; ++i) literal += tokens_[i].kind == TokenKind::Parameter ? 1 : 0;
    std::string text;
    std::size_t at = tokens_[first].place;
    for (std::size_t i = first; i < last; ++i) {
      if (tokens_[i].kind != TokenKind::Parameter) continue;
      text.append(key_, at, tokens_[i].place - at).append(literals_[literal++]);
      at = tokens_[i].place + 2;  // the '?' and its letter
    }
    text.append(key_, at, tokens_[last].place - at);
    return rt::Trim(text);
  }

  [[noreturn]] void Refuse(std::size_t token) const { dialect::NotUnderstood(key_, tokens_[token].place); }

 private:
  std::vector<std::string_view> literals_;
  std::string key_;
  std::vector<Token> tokens_;
};

/// How deep a token is in parentheses, counted from the tokens that have passed.
class Depth {
 public:
  /// Whether the token is outside of all parentheses.
  bool Outside(const Token& token) {
    if (token.IsSign("(")) ++open_;
    const bool outside = open_ == 0;
    if (token.IsSign(")")) --open_;
    return outside;
  }

 private:
  int open_ = 0;
};

/// A clause that begins at a token, and how many words its keyword has; none where no clause begins.
struct Begin {
  Clause clause = kSelection;
  std::size_t words = 0;
};

Begin BeginAt(const std::vector<Token>& tokens, std::size_t i) {
  const bool by = tokens[i + 1].Is("BY");
  if (tokens[i].Is("WHERE")) return {kWhere, 1};
  if (tokens[i].Is("GROUP") && by) return {kGroupBy, 2};
  if (tokens[i].Is("HAVING")) return {kHaving, 1};
  if (tokens[i].Is("ORDER") && by) return {kOrderBy, 2};
  return {};
}

struct Span {
  std::size_t keyword = 0;
  std::size_t first = 0;
  std::size_t last = 0;
  bool Empty() const { return first == last; }
};

std::array<Span, kClauses> SpansOf(const Written& written) {
  const auto& tokens = written.Tokens();
  std::size_t end = tokens.size() - 1;
  while (end > 0 && tokens[end - 1].IsSign(";")) --end;
  std::array<Span, kClauses> spans{};
  spans[kSelection] = {0, 0, end};
  std::size_t clause = kSelection;
  Depth depth;
  for (std::size_t i = 1; i < end; ++i) {
    if (!depth.Outside(tokens[i]) || tokens[i - 1].IsSign(".")) continue;
    const Begin begin = BeginAt(tokens, i);
    if (begin.words == 0) continue;
    if (begin.clause <= clause || i + begin.words >= end) written.Refuse(i);
    spans[clause].last = i;
    clause = begin.clause;
    spans[clause] = {i, i + begin.words, end};
    i += begin.words - 1;
  }
  return spans;
}

std::vector<QueryClauses::Order> OrdersOf(const Written& written, const Span& span) {
  const auto& tokens = written.Tokens();
  std::vector<QueryClauses::Order> orders;
  Depth depth;
  std::size_t first = span.first;
  for (std::size_t i = span.first; i <= span.last && !span.Empty(); ++i) {
    if (i < span.last && !(depth.Outside(tokens[i]) && tokens[i].IsSign(","))) continue;
    std::size_t last = i;
    const bool descends = last > first && tokens[last - 1].Is("DESC");
    if (last > first + 1 && (descends || tokens[last - 1].Is("ASC"))) --last;
    if (last == first) written.Refuse(first);
    orders.push_back({written.Piece(first, last), descends});
    first = i + 1;
  }
  return orders;
}

}  // namespace

QueryClauses::QueryClauses(std::string_view source) {
  if (!IsQuery(source)) {
    select_ = "SELECT * FROM [" + std::string(source) + "]";
    return;
  }
  const Written written(source);
  const auto& tokens = written.Tokens();
  if (!tokens.front().Is(kSelect)) written.Refuse(0);
  const auto spans = SpansOf(written);
  const auto piece = [&](const Span& span) {
    return span.Empty() ? std::string() : written.Piece(span.first, span.last);
  };
  select_ = piece(spans[kSelection]);
  where_ = piece(spans[kWhere]);
  for (const Clause clause : {kGroupBy, kHaving})
    if (!spans[clause].Empty())
      groupBy_ += (groupBy_.empty() ? "" : " ") + written.Piece(spans[clause].keyword, spans[clause].last);
  orderBy_ = piece(spans[kOrderBy]);
  orders_ = OrdersOf(written, spans[kOrderBy]);
  limited_ = tokens[1].Is("TOP") || tokens[1].Is("DISTINCT") || !groupBy_.empty();
}

std::string QueryClauses::TextWith(const std::string& select, const std::string& where,
                                   const std::string& orderBy) const {
  return select + (where.empty() ? "" : " WHERE " + where) + (groupBy_.empty() ? "" : " " + groupBy_) +
         (orderBy.empty() ? "" : " ORDER BY " + orderBy);
}

std::string QueryClauses::First(int count, const std::string& condition) const {
  return TextWith("SELECT TOP " + std::to_string(count) + select_.substr(kSelect.size()),
                  where_.empty() ? condition : "(" + where_ + ") AND (" + condition + ")", orderBy_);
}

std::string ColumnReference(const FieldInfo& field) {
  if (field.table.empty() || field.column.empty()) return "[" + field.name + "]";
  return "[" + field.table + "].[" + field.column + "]";
}

}  // namespace store
