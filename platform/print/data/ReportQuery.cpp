#include "platform/print/data/ReportQuery.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "platform/print/PrintError.h"
#include "platform/print/data/Lookups.h"
#include "platform/print/data/QueryText.h"
#include "platform/print/data/RowCollector.h"
#include "platform/print/formula/FormulaParser.h"
#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/Text.h"
#include "platform/store/Connection.h"
#include "platform/store/QueryScan.h"
#include "platform/store/StoreError.h"

namespace print {
namespace {

/// What names mean in a selection: every field of the tables, and the report's formulas.
class SelectionScope : public FormulaScope {
 public:
  SelectionScope(const ReportDefinition& report, QuerySource& source) : report_(report), source_(source) {}

  std::optional<int> FieldPlace(std::string_view name) const override { return source_.PlaceOf(name); }
  rt::ValueType FieldType(int place) const override {
    return source_.Fields()[static_cast<std::size_t>(place)].type;
  }
  std::shared_ptr<const FormulaNode> NamedFormula(std::string_view name) const override {
    for (const auto& [known, formula] : report_.formulas)
      if (rt::EqualNoCase(known, name)) return formula.Tree();
    return nullptr;
  }
  std::optional<int> GroupOf(std::string_view) const override { return std::nullopt; }

 private:
  const ReportDefinition& report_;
  QuerySource& source_;
};

bool OnlyBlanks(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

/// The selection as a condition; empty for a text of blanks.
Formula ReadSelection(const std::string& text, const FormulaScope& scope) {
  if (OnlyBlanks(text)) return {};
  const Formula selection = Formula::Read(text, scope, FormulaUse::PerRow);
  const ValueKind kind = KindOf(selection.Type());
  if (kind != ValueKind::Boolean && kind != ValueKind::Unknown && kind != ValueKind::Number)
    throw FormulaError("The selection is " + std::string(KindName(kind)) + " and no condition.", Place{});
  return selection;
}

/// Runs what reads the data file; errors of the store become errors of the report, which name the file.
template <typename Work>
auto OfFile(const std::string& path, Work work) {
  try {
    return work();
  } catch (const store::StoreError& error) {
    throw PrintError("The data file '" + path + "' cannot be read: " + error.what());
  }
}

/// Whether a row finds at most one partner in the table.
bool FindsOne(const TableDefinition& table, const store::Schema& schema) {
  const auto* info = schema.Find(table.name);
  return std::any_of(info->indexes.begin(), info->indexes.end(), [&](const store::IndexInfo& index) {
    if (!(index.unique || index.primary) || index.exceptEmpty) return false;
    return std::all_of(index.columns.begin(), index.columns.end(), [&](const std::string& column) {
      return std::any_of(table.joins.begin(), table.joins.end(),
                         [&](const JoinDefinition& join) { return rt::EqualNoCase(join.field, column); });
    });
  });
}

/// The rows of a subreport by the values that link them.
struct LinkedRows {
  rt::Value value;
  std::int64_t first = 0;
  std::int64_t count = 0;
};

/// Others wait for a short report for as long as this; a longer one is read from a copy.
constexpr std::chrono::milliseconds kShortLook{20};

/// One look at the data, in which all rows of a run are read.
class RunReader {
 public:
  RunReader(const RunRequest& request, const ReadProgress& progress, std::vector<std::string>* warnings)
      : request_(request),
        progress_(progress),
        warnings_(warnings),
        now_(rt::Now()),
        connection_(store::Connection::Open({request.dataFile, store::Share::Shared, true})) {}

  std::unique_ptr<ReportRows> Read(const ReportDefinition& report) {
    bool over = false;
    try {
      Look();
      const auto end = std::chrono::steady_clock::now() + kShortLook;
      const store::ReadingEnd limit(connection_,
                                    [&, end] { return over = std::chrono::steady_clock::now() > end; });
      return ReadNow(report);
    } catch (const store::StoreError&) {
      if (!over) throw;
    }
    look_.reset();
    bool goOn = true;
    const auto ask = [&] { return goOn = !progress_ || progress_(0); };
    // Where there is no place for a copy, others wait.
    if (!store::ReadFromCopy(connection_, ask) && !goOn) return nullptr;
    Look();
    return ReadNow(report);
  }

 private:
  void Look() {
    look_.emplace(connection_);
    schema_ = connection_->Tables();
  }

  std::unique_ptr<ReportRows> ReadNow(const ReportDefinition& report) {
    QuerySource source(report, *schema_, request_.dataFile);
    const SelectionScope scope(report, source);
    Formula selection;
    try {
      selection = ReadSelection(request_.selection, scope);
    } catch (const FormulaError& error) {
      throw PrintError(FaultText("Selection", error));
    }
    auto keys = GroupKeys(report);
    if (request_.sort.empty()) {
      AddOrder(report, keys);
    } else {
      for (const auto& sort : request_.sort) keys.push_back(KeyOfSort(sort, source));
    }
    auto lookups = HoldSmallTables(connection_, report, source);
    RowCollector collector(source, report.fields.size(), now_);
    collector.LookInto(std::move(lookups));
    for (const auto& subreport : report.subreports) collector.Collect(subreport.outerField);
    Prepare(report, source, collector, std::move(keys));
    if (!selection.Empty()) collector.AddTest(&selection);
    const std::string condition = Joined(Pushed(report.rowTest, source), Pushed(selection, source));
    if (!ReadAll(source, condition, collector)) return nullptr;
    Row blank = BlankRow(report, source);
    std::vector<std::unique_ptr<InnerReading>> inner;
    for (std::size_t i = 0; i < report.subreports.size(); ++i) {
      inner.push_back(std::make_unique<InnerReading>(*this, *report.subreports[i].report));
      if (!ReadInner(report.subreports[i], collector.Collected(i), *inner.back())) return nullptr;
    }
    // Ordering takes its time, in which others may write.
    look_.reset();
    collector.Report(warnings_);
    auto rows = collector.Finish();
    rows->blank = std::move(blank);
    for (std::size_t i = 0; i < inner.size(); ++i) {
      inner[i]->collector.Report(warnings_);
      ReportRows::Inner found;
      found.rows = inner[i]->collector.Finish();
      found.find = FinderOf(found.rows->rows, report.subreports[i].innerField);
      rows->subreports.push_back(std::move(found));
    }
    return rows;
  }

  /// The rows of a subreport until they are in order.
  struct InnerReading {
    InnerReading(const RunReader& reader, const ReportDefinition& report)
        : source(report, *reader.schema_, reader.request_.dataFile),
          lookups(HoldSmallTables(reader.connection_, report, source)),
          collector(source, report.fields.size(), reader.now_) {
      collector.LookInto(std::move(lookups));
    }
    QuerySource source;
    std::vector<Lookup> lookups;
    RowCollector collector;
  };

  static std::vector<RowKey> GroupKeys(const ReportDefinition& report) {
    std::vector<RowKey> keys;
    for (const auto& group : report.groups) {
      RowKey key;
      key.descending = group.descending;
      const FormulaNode* root = group.key.Root();
      if (root && root->kind == NodeKind::Field)
        key.field = root->place;
      else
        key.formula = group.key;
      keys.push_back(std::move(key));
    }
    return keys;
  }

  static void AddOrder(const ReportDefinition& report, std::vector<RowKey>& keys) {
    for (const auto& order : report.order) {
      RowKey key;
      key.field = order.field;
      key.descending = order.descending;
      keys.push_back(std::move(key));
    }
  }

  static RowKey KeyOfSort(const SortField& sort, QuerySource& source) {
    std::string name = rt::Trim(sort.name);
    if (name.starts_with('{')) name.erase(0, 1);
    if (name.ends_with('}')) name.pop_back();
    const auto place = source.PlaceOf(NormalizedField(name));
    if (!place)
      throw PrintError("Sort field {" + name + "}: there is no such field in the tables of the report.");
    RowKey key;
    key.field = *place;
    key.descending = sort.descending;
    return key;
  }

  void Prepare(const ReportDefinition& report, const QuerySource& source, RowCollector& collector,
               std::vector<RowKey> keys) const {
    if (!report.rowTest.Empty()) collector.AddTest(&report.rowTest);
    collector.OrderBy(std::move(keys));
    for (std::size_t i = 1; i < report.tables.size(); ++i)
      if (!source.IsHeld(static_cast<int>(i)) && !FindsOne(report.tables[i], *schema_))
        collector.ShowEachOnce();
  }

  std::string Pushed(const Formula& selection, const QuerySource& source) const {
    if (selection.Empty()) return {};
    return PushedCondition(
        *selection.Root(),
        [&](int field) {
          QueryColumn column = source.ColumnOf(field);
          // The query does not have it, so that nothing can be said of it there.
          if (source.IsHeld(source.Fields()[static_cast<std::size_t>(field)].table))
            column.type = store::ColumnType::LongBinary;
          return column;
        },
        RowValues(now_));
  }

  static std::string Joined(const std::string& a, const std::string& b) {
    return a.empty() || b.empty() ? a + b : a + " AND " + b;
  }

  /// Rows come as the file has them: to order them here would keep others waiting longer.
  bool ReadAll(const QuerySource& source, const std::string& condition, RowCollector& collector) {
    const std::string sql = "SELECT " + source.ColumnList() + " FROM " + source.From() +
                            (condition.empty() ? "" : " WHERE " + condition);
    return store::ReadQuery(connection_, sql, store::Ties::Any, [&](const store::QueriedRow& row) {
      collector.Take(row);
      constexpr std::int64_t kRowsBetween = 256;
      return ++seen_ % kRowsBetween != 0 || !progress_ || progress_(collector.Count());
    });
  }

  Row BlankRow(const ReportDefinition& report, const QuerySource& source) {
    Row blank(report.fields.size());
    RowCollector checker(source, report.fields.size(), now_);
    for (std::size_t table = 1; table < report.tables.size(); ++table) {
      const auto& joins = report.tables[table].joins;
      if (!std::all_of(joins.begin(), joins.end(),
                       [](const JoinDefinition& join) { return join.otherTable.empty(); }))
        continue;
      std::string list;
      std::vector<std::size_t> places;
      for (std::size_t i = 0; i < report.fields.size(); ++i) {
        if (report.fields[i].table != static_cast<int>(table)) continue;
        list += (list.empty() ? "" : ", ") + source.ColumnOf(static_cast<int>(i)).name;
        places.push_back(i);
      }
      if (places.empty()) continue;
      const std::string sql = "SELECT " + list + " FROM " + source.OneTable(static_cast<int>(table)) +
                              " WHERE " + source.JoinCondition(static_cast<int>(table));
      store::ReadQuery(connection_, sql, store::Ties::ByKeys, [&](const store::QueriedRow& row) {
        for (std::size_t i = 0; i < places.size(); ++i)
          blank[places[i]] = checker.Checked(row, static_cast<int>(i), static_cast<int>(places[i]));
        return false;
      });
    }
    return blank;
  }

  /// Reads the rows of a subreport for the values that the outer rows have.
  bool ReadInner(const SubreportDefinition& subreport, const std::vector<rt::Value>& values,
                 InnerReading& reading) {
    const ReportDefinition& report = *subreport.report;
    std::vector<RowKey> keys(1);
    keys[0].field = subreport.innerField;
    auto groups = GroupKeys(report);
    keys.insert(keys.end(), groups.begin(), groups.end());
    AddOrder(report, keys);
    Prepare(report, reading.source, reading.collector, std::move(keys));
    const std::string own = Pushed(report.rowTest, reading.source);
    const auto conditions = LinkConditions(reading.source.ColumnOf(subreport.innerField), values);
    return std::all_of(conditions.begin(), conditions.end(), [&](const std::string& condition) {
      return ReadAll(reading.source, Joined(own, condition), reading.collector);
    });
  }

  /// Conditions that find the rows of some values, in their order. Of many values, and of those that SQL has
  /// no list for, all rows are read.
  static std::vector<std::string> LinkConditions(const QueryColumn& column,
                                                 const std::vector<rt::Value>& values) {
    if (values.empty()) return {};
    constexpr std::size_t kMostValues = 20'000;
    constexpr std::size_t kValuesOfOne = 100;
    using store::ColumnType;
    const bool listed = column.type == ColumnType::Counter || column.type == ColumnType::Long ||
                        column.type == ColumnType::Short || column.type == ColumnType::Text;
    if (!listed || values.size() > kMostValues) return {""};
    std::vector<std::string> conditions;
    for (std::size_t from = 0; from < values.size(); from += kValuesOfOne) {
      std::string list;
      // The last list is as long as the others, so that one translation serves for all.
      for (std::size_t i = from; i < from + kValuesOfOne && (from > 0 || i < values.size()); ++i) {
        const std::string literal = SqlLiteral(values[std::min(i, values.size() - 1)]);
        if (literal.empty()) return {""};
        list += (list.empty() ? "" : ", ") + literal;
      }
      conditions.push_back(column.name + " IN (" + list + ")");
    }
    return conditions;
  }

  static std::function<std::pair<std::int64_t, std::int64_t>(const rt::Value&)> FinderOf(const RowSpool& rows,
                                                                                         int field) {
    std::vector<LinkedRows> links;
    Row row;
    for (std::int64_t i = 0; i < rows.Count(); ++i) {
      rows.Read(i, row);
      const auto& value = row[static_cast<std::size_t>(field)];
      if (links.empty() || !SameKey(links.back().value, value)) links.push_back({value, i, 0});
      ++links.back().count;
    }
    return [links = std::move(links)](const rt::Value& value) -> std::pair<std::int64_t, std::int64_t> {
      if (value.IsNull()) return {0, 0};
      const auto found =
          std::lower_bound(links.begin(), links.end(), value,
                           [](const LinkedRows& a, const rt::Value& b) { return SortOrder(a.value, b) < 0; });
      if (found == links.end() || !SameKey(found->value, value)) return {0, 0};
      return {found->first, found->count};
    };
  }

  const RunRequest& request_;
  const ReadProgress& progress_;
  std::vector<std::string>* warnings_;
  rt::DateTime now_;
  std::int64_t seen_ = 0;
  std::shared_ptr<store::Connection> connection_;
  std::optional<store::Reading> look_;
  std::shared_ptr<const store::Schema> schema_;
};

}  // namespace

std::unique_ptr<ReportRows> ReadReportRows(const ReportDefinition& report, const RunRequest& request,
                                           const ReadProgress& progress, std::vector<std::string>* warnings) {
  return OfFile(request.dataFile, [&] { return RunReader(request, progress, warnings).Read(report); });
}

std::string SelectionFault(const ReportDefinition& report, const std::string& dataFile,
                           const std::string& selection) {
  try {
    const auto schema = OfFile(dataFile, [&] {
      return store::Connection::Open({dataFile, store::Share::Shared, true})->Tables();
    });
    QuerySource source(report, *schema, dataFile);
    ReadSelection(selection, SelectionScope(report, source));
  } catch (const FormulaError& error) {
    return FaultText("Selection", error);
  } catch (const PrintError& error) {
    return error.what();
  }
  return {};
}

}  // namespace print
