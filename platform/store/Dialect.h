// The SQL that the system speaks, translated to the SQL of the file underneath.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/Schema.h"

namespace store {

namespace dialect {
class Spelling;
}

/// A statement with its literals taken out, so that statements which differ in their values alone share one
/// translation. A literal becomes a '?' with a letter for its type, because what is done with it may depend
/// on that: ?t text, ?l Long, ?f Double, ?d date. A number behind TOP and the numbers of CREATE and ALTER
/// stay in the key, and names stay as they were typed; a run of blanks and line ends counts as one blank.
struct Normalized {
  std::string key;
  /// Text, Long (where whole and in its range, otherwise Double), Double, Date; in order of appearance.
  std::vector<rt::Value> parameters;
};

/// Whether a recordset's source is a query rather than a table's name. A table may be called "Select and Sort
/// Queries", so the first word alone does not make a query.
bool IsQuery(std::string_view source);

/// Takes a statement apart. Throws StoreError 3075 for a character or literal that the dialect does not know:
/// an open quote or bracket, a # literal that is not a date.
Normalized Normalize(std::string_view sql);

enum class StatementKind {
  Select,
  Insert,
  Update,
  Delete,
  AddColumn,
  DropColumn,
  CreateTable,
  DropTable,
  CreateIndex,
  DropIndex
};

struct SourceTable {
  std::string name;       ///< the table's own spelling
  std::string alias;      ///< what the statement calls it; the name if there is no alias
  bool optional = false;  ///< its row may be missing: the far side of an outer join
};

struct ResultColumn {
  std::string name;  ///< as the caller finds it: "Description", or "Divisions.Description" where doubled
  ColumnType type = ColumnType::Text;
  int table = -1;          ///< index into `tables`; -1 for a computed column
  std::string column;      ///< the table's column; empty for a computed one
  std::string expression;  ///< in the file's SQL
};

/// A statement in the file's SQL. Parameters appear as ?1, ?2 … in the order of Normalized::parameters, so
/// that a part of the statement can be used without the others.
struct Translation {
  StatementKind kind = StatementKind::Select;
  std::vector<SourceTable> tables;  ///< of a Select in FROM order; of a write the target alone

  // Select
  std::vector<ResultColumn> columns;
  bool distinct = false;
  bool grouped = false;  ///< has an aggregate, GROUP BY or HAVING: its rows have no keys
  std::string from;      ///< behind FROM: tables and joins, quoted, aliased
  std::string where;     ///< condition, or empty
  std::string groupBy;   ///< list, or empty
  std::string having;    ///< condition, or empty
  std::string orderBy;   ///< list, or empty
  std::string limit;     ///< what follows for the rows of a TOP, or empty

  // Insert, Update and Delete; for Update and Delete `where` is the condition
  std::string target;                                            ///< the table's own spelling
  std::vector<std::pair<std::string, std::string>> assignments;  ///< Update: column, expression
  std::vector<std::string> insertColumns;                        ///< Insert: columns in order
  std::vector<std::string> insertValues;                         ///< Insert … VALUES: expressions in order
  std::string insertSelect;  ///< Insert … SELECT: the whole query, or empty

  // Definitions
  ColumnInfo column;                   ///< AddColumn; DropColumn uses the name
  std::vector<ColumnInfo> newColumns;  ///< CreateTable
  IndexInfo index;                     ///< CreateIndex, DropIndex; CreateTable with a PRIMARY KEY clause
};

/// Translates a normalized statement against the tables of a file, into the words of its engine.
///
/// Understood: SELECT [DISTINCT] [TOP n] list FROM tables with INNER, LEFT and RIGHT JOIN … ON, WHERE, GROUP
/// BY, HAVING, ORDER BY; INSERT INTO t (columns) VALUES (…) or SELECT …; UPDATE t SET …  WHERE; DELETE [*]
/// FROM t WHERE; ALTER TABLE ADD and DROP COLUMN; CREATE and DROP TABLE and INDEX. Names are bare or in
/// brackets; a bracket may have "table.column" in it or end in blanks. TRUE, FALSE, NULL, IS [NOT] NULL /
/// TRUE / FALSE, AND, OR, NOT, comparison,
/// + - * / &, LIKE with * ? #, BETWEEN, IN, and the functions UCASE, LCASE, LEN, LEFT, RIGHT, MID, TRIM, IIF,
/// ISNULL, NZ, ABS, INT, YEAR, MONTH, DAY, NOW, DATE, COUNT, SUM, AVG, MIN, MAX. A trailing semicolon is
/// accepted.
///
/// If the meaning is not plain, that is an error rather than a guess: dates that are compared with texts or
/// numbers, or calculated with; a column beside a total that is not grouped by; literals in ORDER BY and
/// GROUP BY; an order that a DISTINCT list lacks; brackets with joins on both sides of a join. A computed
/// column without AS is called "Expr1000" and so on, by its place in the list.
///
/// Currency columns are amounts in expressions; alone in a list, and in MIN, MAX and SUM, they come in the
/// file's own form, with the type Currency. Texts compare without regard to case, those of literals and
/// functions too. The SQL uses the functions ucase, lcase, dw_like(pattern, text), dw_now and dw_date, which
/// the connection provides.
///
/// Throws StoreError 3075 for what is not understood (with the place), 3078 for an unknown table, 3061 for an
/// unknown column, 3079 for a column name that two tables share.
Translation Translate(const Normalized& statement, const Schema& schema, const dialect::Spelling& spelled);

/// LIKE, without regard to the case of letters: * any text, ? any one character, # any digit, [a-z] one of a
/// list, [!a-z] one that is not in the list. A list that is not closed matches nothing.
bool LikeMatch(std::string_view pattern, std::string_view text);

}  // namespace store
