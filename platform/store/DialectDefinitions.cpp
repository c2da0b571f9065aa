// The parser's part for tables, columns and indexes.
#include <charconv>

#include "platform/runtime/Text.h"
#include "platform/store/DialectParser.h"

namespace store::dialect {
namespace {

constexpr int kLongestText = 255;

struct TypeWord {
  std::string_view word;
  ColumnType type;
};

constexpr TypeWord kTypes[] = {
    {"COUNTER", ColumnType::Counter},   {"AUTOINCREMENT", ColumnType::Counter},
    {"SHORT", ColumnType::Short},       {"SMALLINT", ColumnType::Short},
    {"INTEGER", ColumnType::Long},      {"LONG", ColumnType::Long},
    {"SINGLE", ColumnType::Single},     {"REAL", ColumnType::Single},
    {"DOUBLE", ColumnType::Double},     {"FLOAT", ColumnType::Double},
    {"CURRENCY", ColumnType::Currency}, {"MONEY", ColumnType::Currency},
    {"DATETIME", ColumnType::DateTime}, {"DATE", ColumnType::DateTime},
    {"YESNO", ColumnType::Boolean},     {"BIT", ColumnType::Boolean},
    {"BOOLEAN", ColumnType::Boolean},   {"TEXT", ColumnType::Text},
    {"CHAR", ColumnType::Text},         {"VARCHAR", ColumnType::Text},
    {"MEMO", ColumnType::Memo},         {"LONGBINARY", ColumnType::LongBinary},
};

IndexInfo PrimaryKey(std::vector<std::string> columns) {
  return IndexInfo{"PrimaryKey", std::move(columns), true, true, true};
}

}  // namespace

void Parser::ParseAlter(Statement& statement) {
  Expect("TABLE");
  statement.targetPlace = Now().place;
  statement.target = ParseName();
  if (Accept("ADD")) {
    statement.kind = StatementKind::AddColumn;
    Accept("COLUMN");
    statement.column = ParseColumnDefinition(nullptr);
  } else {
    Expect("DROP");
    statement.kind = StatementKind::DropColumn;
    Accept("COLUMN");
    statement.columns.push_back(ParseColumnName());
  }
}

void Parser::ParseCreate(Statement& statement) {
  if (Accept("TABLE")) {
    ParseCreateTable(statement);
    return;
  }
  statement.kind = StatementKind::CreateIndex;
  statement.index.unique = Accept("UNIQUE");
  Expect("INDEX");
  statement.index.name = ParseName();
  Expect("ON");
  statement.targetPlace = Now().place;
  statement.target = ParseName();
  ExpectSign("(");
  do statement.columns.push_back(ParseColumnName());
  while (AcceptSign(","));
  ExpectSign(")");
}

void Parser::ParseCreateTable(Statement& statement) {
  statement.kind = StatementKind::CreateTable;
  statement.targetPlace = Now().place;
  statement.target = ParseName();
  ExpectSign("(");
  do {
    const std::size_t place = Now().place;
    if (Now().Is("PRIMARY") && Ahead(1).Is("KEY")) {
      at_ += 2;
      if (statement.index.primary) NotUnderstood(key_, place, "There is a second primary key");
      statement.index = PrimaryKey(ParseNameList());
    } else {
      auto column = ParseColumnDefinition(&statement.index);
      for (const auto& earlier : statement.newColumns)
        if (rt::EqualNoCase(earlier.name, column.name))
          NotUnderstood(key_, place, "There is a second column of this name");
      statement.newColumns.push_back(std::move(column));
    }
  } while (AcceptSign(","));
  CheckLength(statement.newColumns.size());
  const std::size_t end = Now().place;
  ExpectSign(")");
  if (statement.newColumns.empty()) NotUnderstood(key_, end, "The table has no columns");
  for (const auto& name : statement.index.columns) {
    bool found = false;
    for (const auto& column : statement.newColumns) found = found || rt::EqualNoCase(column.name, name);
    if (!found) throw StoreError(kTooFewParameters, "The key names a column that is not there: " + name);
  }
}

void Parser::ParseDrop(Statement& statement) {
  if (Accept("TABLE")) {
    statement.kind = StatementKind::DropTable;
  } else {
    Expect("INDEX");
    statement.kind = StatementKind::DropIndex;
    statement.index.name = ParseName();
    Expect("ON");
  }
  statement.targetPlace = Now().place;
  statement.target = ParseName();
}

// `primary` takes a key that the column itself declares; null if none can be declared.
ColumnInfo Parser::ParseColumnDefinition(IndexInfo* primary) {
  ColumnInfo column;
  column.name = ParseName();
  ParseColumnType(column);
  for (;;) {
    const std::size_t place = Now().place;
    if (Now().Is("NOT") && Ahead(1).Is("NULL")) {
      at_ += 2;
      column.required = true;
    } else if (primary && Now().Is("PRIMARY") && Ahead(1).Is("KEY")) {
      at_ += 2;
      if (primary->primary) NotUnderstood(key_, place, "There is a second primary key");
      *primary = PrimaryKey({column.name});
    } else {
      return column;
    }
  }
}

void Parser::ParseColumnType(ColumnInfo& column) {
  const TypeWord* found = nullptr;
  for (const auto& one : kTypes)
    if (Now().Is(one.word)) found = &one;
  if (!found) Refuse("This is no type of a column");
  ++at_;
  column.type = found->type;
  if (column.type != ColumnType::Text) return;
  column.size = kLongestText;
  if (!AcceptSign("(")) return;
  const std::string_view digits = Now().text;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), column.size);
  if (Now().kind != TokenKind::Number || read.ec != std::errc() || column.size < 1 ||
      column.size > kLongestText)
    Refuse("A text holds 1 to 255 characters");
  ++at_;
  ExpectSign(")");
}

std::vector<std::string> Parser::ParseNameList() {
  std::vector<std::string> names;
  ExpectSign("(");
  do names.emplace_back(ParseName());
  while (AcceptSign(","));
  ExpectSign(")");
  return names;
}

}  // namespace store::dialect
