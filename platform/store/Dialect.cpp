#include "platform/store/Dialect.h"

#include "platform/runtime/Text.h"
#include "platform/store/DialectParser.h"
#include "platform/store/DialectQuery.h"
#include "platform/store/DialectSpelling.h"
#include "platform/store/StoreError.h"

namespace store {
namespace {

using namespace dialect;

// The engine numbers parameters up to 250,000; no real statement has that many literals.
constexpr std::size_t kMostParameters = 30000;

/// Puts together what the parser has found for one statement.
class Translator {
 public:
  Translator(const Statement& statement, const Schema& schema, const Spelling& spelled, std::string_view key)
      : statement_(statement),
        schema_(schema),
        spelled_(spelled),
        key_(key),
        scope_(schema),
        emitter_(scope_, spelled, key) {}

  Translation Run() {
    result_.kind = statement_.kind;
    switch (statement_.kind) {
      case StatementKind::Select:
        QueryTranslator(schema_, spelled_, key_).Translate(statement_.query, result_);
        break;
      case StatementKind::Insert:
        Insert();
        break;
      case StatementKind::Update:
        Update();
        break;
      case StatementKind::Delete:
        Target();
        Condition();
        break;
      case StatementKind::CreateTable:
        result_.target = statement_.target;
        result_.newColumns = statement_.newColumns;
        result_.index = statement_.index;
        break;
      case StatementKind::AddColumn:
        Target();
        result_.column = statement_.column;
        break;
      case StatementKind::DropColumn:
        Target();
        result_.column = Column(statement_.columns.front());
        break;
      case StatementKind::CreateIndex:
        Target();
        result_.index = statement_.index;
        for (const auto& name : statement_.columns) result_.index.columns.push_back(Column(name).name);
        break;
      case StatementKind::DropTable:
        Target();
        break;
      case StatementKind::DropIndex:
        Target();
        result_.index = statement_.index;
        break;
    }
    return std::move(result_);
  }

 private:
  void Target() {
    scope_.Add(statement_.target, {});
    result_.tables = scope_.Tables();
    result_.target = scope_.Table(0).name;
  }

  const ColumnInfo& Column(const ColumnName& name) const { return *scope_.Resolve(name).column; }

  void Condition() {
    if (statement_.where) result_.where = emitter_.EmitCondition(*statement_.where, Totals::Forbidden).text;
  }

  // The columns that are set, each once.
  std::vector<const ColumnInfo*> Columns() const {
    std::vector<const ColumnInfo*> columns;
    for (const auto& name : statement_.columns) {
      const ColumnInfo* column = &Column(name);
      for (const auto* earlier : columns)
        if (earlier == column) NotUnderstood(key_, name.place, "The column is set twice");
      columns.push_back(column);
    }
    return columns;
  }

  void Update() {
    Target();
    const auto columns = Columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const Fragment value = emitter_.Emit(*statement_.values[i], Totals::Forbidden);
      result_.assignments.emplace_back(columns[i]->name, Stored(spelled_, value, *columns[i]));
    }
    Condition();
  }

  void Insert() {
    Target();
    const auto columns = Columns();
    for (const auto* column : columns) result_.insertColumns.push_back(column->name);
    if (statement_.hasQuery) return InsertQuery(columns);
    // The values of a new record cannot come from the columns of the table.
    const Scope none(schema_);
    Emitter emitter(none, spelled_, key_);
    for (std::size_t i = 0; i < columns.size(); ++i)
      result_.insertValues.push_back(
          Stored(spelled_, emitter.Emit(*statement_.values[i], Totals::Forbidden), *columns[i]));
  }

  void InsertQuery(const std::vector<const ColumnInfo*>& columns) {
    QueryTranslator translator(schema_, spelled_, key_);
    Translation query;
    translator.Translate(statement_.query, query);
    if (query.columns.size() != columns.size())
      throw StoreError(kSyntax, "The query does not give as many values as there are columns to set.");
    std::string& sql = result_.insertSelect;
    sql = query.distinct ? "SELECT DISTINCT " : "SELECT ";
    for (std::size_t i = 0; i < columns.size(); ++i)
      sql += (i ? ", " : "") + Selected(translator.Values()[i], *columns[i], query.distinct);
    sql += " FROM " + query.from;
    if (!query.where.empty()) sql += " WHERE " + query.where;
    if (!query.groupBy.empty()) sql += " GROUP BY " + query.groupBy;
    if (!query.having.empty()) sql += " HAVING " + query.having;
    if (!query.orderBy.empty()) sql += " ORDER BY " + query.orderBy;
    sql += query.limit;
  }

  std::string Selected(const Fragment& value, const ColumnInfo& column, bool distinct) const {
    Fragment stored;
    stored.kind = KindOf(column.type);
    stored.text = Stored(spelled_, value, column);
    // Finds doubles without regard to case.
    return distinct ? WithoutCase(spelled_, stored).text : stored.text;
  }

  const Statement& statement_;
  const Schema& schema_;
  const Spelling& spelled_;
  std::string_view key_;
  Scope scope_;
  Emitter emitter_;
  Translation result_;
};

}  // namespace

bool IsQuery(std::string_view source) {
  const auto start = source.find_first_not_of(" \t\r\n");
  if (start == std::string_view::npos || !rt::EqualNoCase(source.substr(start, 6), "SELECT")) return false;
  for (auto at = start + 6; at + 4 <= source.size(); ++at)
    if (rt::EqualNoCase(source.substr(at, 4), "FROM")) return true;
  return false;
}

Translation Translate(const Normalized& statement, const Schema& schema, const Spelling& spelled) {
  if (statement.parameters.size() > kMostParameters)
    throw StoreError(kSyntax, "The statement has too many values.");
  const Statement parsed = Parser(statement.key).Parse();
  return Translator(parsed, schema, spelled, statement.key).Run();
}

}  // namespace store
