#include "platform/store/DialectParser.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/runtime/Text.h"

namespace store::dialect {
namespace {

constexpr int kMostNesting = 60;
constexpr int kMostTables = 16;
constexpr std::size_t kMostListed = 255;

// Words that end a name's place: bare, none of them can be a column, a table or an alias.
constexpr std::array kReserved = {
    "ADD",    "ALL",   "ALTER",  "AND",    "ANY",      "AS",          "ASC",  "BETWEEN", "BY",
    "CREATE", "CROSS", "DELETE", "DESC",   "DISTINCT", "DISTINCTROW", "DROP", "EQV",     "EXISTS",
    "FALSE",  "FROM",  "FULL",   "GROUP",  "HAVING",   "IMP",         "IN",   "INNER",   "INSERT",
    "INTO",   "IS",    "JOIN",   "LEFT",   "LIKE",     "MOD",         "NOT",  "NULL",    "ON",
    "OR",     "ORDER", "OUTER",  "RIGHT",  "SELECT",   "SET",         "SOME", "TABLE",   "TOP",
    "TRUE",   "UNION", "UPDATE", "VALUES", "WHERE",    "WITH",        "XOR"};

bool IsReserved(std::string_view word) {
  return std::any_of(kReserved.begin(), kReserved.end(),
                     [&](const char* one) { return rt::EqualNoCase(one, word); });
}

}  // namespace

Parser::Nesting::Nesting(Parser& parser) : parser_(parser) {
  // The destructor does not run when this throws, and the parser is not used again then.
  if (++parser_.nesting_ > kMostNesting) parser_.Refuse("The statement is nested too deeply");
}

Statement Parser::Parse() {
  Statement statement;
  if (Now().Is("SELECT")) {
    statement.query = ParseQuery();
  } else if (Accept("INSERT")) {
    ParseInsert(statement);
  } else if (Accept("UPDATE")) {
    ParseUpdate(statement);
  } else if (Accept("DELETE")) {
    ParseDelete(statement);
  } else if (Accept("ALTER")) {
    ParseAlter(statement);
  } else if (Accept("CREATE")) {
    ParseCreate(statement);
  } else if (Accept("DROP")) {
    ParseDrop(statement);
  } else {
    Refuse();
  }
  AcceptSign(";");
  if (Now().kind != TokenKind::End) Refuse();
  return statement;
}

void Parser::ParseInsert(Statement& statement) {
  statement.kind = StatementKind::Insert;
  Expect("INTO");
  statement.targetPlace = Now().place;
  statement.target = ParseName();
  ExpectSign("(");
  do statement.columns.push_back(ParseColumnName());
  while (AcceptSign(","));
  CheckLength(statement.columns.size());
  ExpectSign(")");
  if (Now().Is("SELECT")) {
    statement.query = ParseQuery();
    statement.hasQuery = true;
    return;
  }
  Expect("VALUES");
  ExpectSign("(");
  const std::size_t place = Now().place;
  statement.values = ParseExprList();
  ExpectSign(")");
  if (statement.values.size() != statement.columns.size())
    NotUnderstood(key_, place, "There are not as many values as columns");
}

void Parser::ParseUpdate(Statement& statement) {
  statement.kind = StatementKind::Update;
  statement.targetPlace = Now().place;
  statement.target = ParseName();
  Expect("SET");
  do {
    statement.columns.push_back(ParseColumnName());
    ExpectSign("=");
    statement.values.push_back(ParseExpr());
  } while (AcceptSign(","));
  CheckLength(statement.columns.size());
  if (Accept("WHERE")) statement.where = ParseExpr();
}

void Parser::ParseDelete(Statement& statement) {
  statement.kind = StatementKind::Delete;
  AcceptSign("*");
  Expect("FROM");
  statement.targetPlace = Now().place;
  statement.target = ParseName();
  if (Accept("WHERE")) statement.where = ParseExpr();
}

Query Parser::ParseQuery() {
  Query query;
  Expect("SELECT");
  query.distinct = Accept("DISTINCT");
  if (Accept("TOP")) {
    std::int64_t count = 0;
    const std::string_view digits = Now().text;
    if (Now().kind != TokenKind::Number) Refuse("TOP needs a whole number");
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), count);
    if (read.ec != std::errc()) Refuse("TOP has too large a number");
    query.top = count;
    ++at_;
  }
  do query.items.push_back(ParseSelectItem());
  while (AcceptSign(","));
  CheckLength(query.items.size());
  Expect("FROM");
  query.from = ParseSources();
  if (Accept("WHERE")) query.where = ParseExpr();
  if (Accept("GROUP")) {
    Expect("BY");
    query.groupBy = ParseExprList();
  }
  if (Accept("HAVING")) query.having = ParseExpr();
  if (Accept("ORDER")) {
    Expect("BY");
    query.orderBy = ParseOrder();
  }
  return query;
}

SelectItem Parser::ParseSelectItem() {
  SelectItem item;
  item.place = Now().place;
  if (AcceptSign("*")) {
    item.star = true;
    return item;
  }
  if (AtName() && Ahead(1).IsSign(".") && Ahead(2).IsSign("*")) {
    item.star = true;
    item.starTable = ParseName();
    at_ += 2;
    return item;
  }
  item.value = ParseExpr();
  if (Accept("AS")) item.alias = ParseName();
  return item;
}

std::unique_ptr<Source> Parser::ParseSources() {
  auto source = ParseJoins();
  while (AcceptSign(",")) source = Join(std::move(source), JoinKind::Cross, ParseJoins());
  return source;
}

std::unique_ptr<Source> Parser::ParseJoins() {
  auto source = ParseTable();
  for (;;) {
    JoinKind kind = JoinKind::Inner;
    if (Accept("INNER")) {
      kind = JoinKind::Inner;
    } else if (Accept("LEFT")) {
      kind = JoinKind::Left;
      Accept("OUTER");
    } else if (Accept("RIGHT")) {
      kind = JoinKind::Right;
      Accept("OUTER");
    } else {
      return source;
    }
    Expect("JOIN");
    source = Join(std::move(source), kind, ParseTable());
    Expect("ON");
    source->on = ParseExpr();
  }
}

std::unique_ptr<Source> Parser::ParseTable() {
  if (Now().IsSign("(")) {
    const Nesting nesting(*this);
    ++at_;
    auto source = ParseJoins();
    ExpectSign(")");
    return source;
  }
  auto source = std::make_unique<Source>();
  source->place = Now().place;
  source->table = ParseName();
  if (Accept("AS") || AtName()) source->alias = ParseName();
  if (++tables_ > kMostTables) Refuse("There are too many tables");
  return source;
}

std::unique_ptr<Source> Parser::Join(std::unique_ptr<Source> left, JoinKind kind,
                                     std::unique_ptr<Source> right) {
  auto join = std::make_unique<Source>();
  join->place = right->place;
  join->join = kind;
  join->left = std::move(left);
  join->right = std::move(right);
  return join;
}

std::vector<OrderTerm> Parser::ParseOrder() {
  std::vector<OrderTerm> terms;
  do {
    OrderTerm term;
    term.value = ParseExpr();
    if (Accept("DESC")) {
      term.descending = true;
    } else {
      Accept("ASC");
    }
    terms.push_back(std::move(term));
  } while (AcceptSign(","));
  CheckLength(terms.size());
  return terms;
}

ColumnName Parser::ParseColumnName() {
  ColumnName name;
  name.place = Now().place;
  name.bracketed = Now().kind == TokenKind::Bracket;
  name.column = ParseName();
  if (AcceptSign(".")) {
    name.table = name.column;
    name.bracketed = Now().kind == TokenKind::Bracket;
    name.column = ParseName();
  }
  return name;
}

std::string_view Parser::ParseName() {
  if (!AtName()) Refuse();
  return tokens_[at_++].text;
}

bool Parser::AtName() const {
  return Now().kind == TokenKind::Bracket || (Now().kind == TokenKind::Word && !IsReserved(Now().text));
}

bool Parser::Accept(std::string_view word) {
  if (!Now().Is(word)) return false;
  ++at_;
  return true;
}

bool Parser::AcceptSign(std::string_view sign) {
  if (!Now().IsSign(sign)) return false;
  ++at_;
  return true;
}

void Parser::Expect(std::string_view word) {
  if (!Accept(word)) Refuse(std::string(word) + " is missing");
}

void Parser::ExpectSign(std::string_view sign) {
  if (!AcceptSign(sign)) Refuse("A '" + std::string(sign) + "' is missing");
}

void Parser::CheckLength(std::size_t count) const {
  if (count > kMostListed) Refuse("A list is too long");
}

}  // namespace store::dialect
