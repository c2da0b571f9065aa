#include "platform/store/sqlite/Functions.h"

#include <memory>
#include <string>

#include "platform/runtime/Clock.h"
#include "platform/runtime/Text.h"
#include "platform/store/Dialect.h"
#include "platform/store/RowList.h"
#include "platform/store/Values.h"
#include "platform/store/sqlite/Cells.h"

namespace store {
namespace {

std::string_view ArgumentText(sqlite3_value* value) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return bytes ? std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)))
               : std::string_view();
}

void ResultText(sqlite3_context* context, const std::string& text) {
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

template <std::string (*Case)(std::string_view)>
void CaseFunction(sqlite3_context* context, int, sqlite3_value** arguments) {
  if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) return sqlite3_result_null(context);
  ResultText(context, Case(ArgumentText(arguments[0])));
}

void LikeFunction(sqlite3_context* context, int, sqlite3_value** arguments) {
  if (sqlite3_value_type(arguments[0]) == SQLITE_NULL || sqlite3_value_type(arguments[1]) == SQLITE_NULL)
    return sqlite3_result_null(context);
  sqlite3_result_int(context, LikeMatch(ArgumentText(arguments[0]), ArgumentText(arguments[1])) ? 1 : 0);
}

void NowFunction(sqlite3_context* context, int, sqlite3_value**) { ResultText(context, rt::Now().ToIso()); }
void DateFunction(sqlite3_context* context, int, sqlite3_value**) {
  ResultText(context, rt::Today().ToIso());
}

/// The year, month or day of a date in the file's own form, by the letter y, m or d; Null for everything
/// else.
void PartFunction(sqlite3_context* context, int, sqlite3_value** arguments) {
  if (sqlite3_value_type(arguments[0]) != SQLITE_TEXT) return;
  const auto date = rt::DateTime::FromIso(ArgumentText(arguments[0]));
  if (!date) return;
  switch (ArgumentText(arguments[1]).front()) {
    case 'y':
      return sqlite3_result_int(context, date->Year());
    case 'm':
      return sqlite3_result_int(context, date->Month());
    default:
      return sqlite3_result_int(context, date->Day());
  }
}

// Results have the form in which PreparedStatement::Bind gives the same values to the file.
struct Result {
  sqlite3_context* context;
  void operator()(rt::Null) const { sqlite3_result_null(context); }
  void operator()(bool flag) const { sqlite3_result_int(context, flag ? 1 : 0); }
  void operator()(std::int16_t number) const { sqlite3_result_int(context, number); }
  void operator()(std::int32_t number) const { sqlite3_result_int(context, number); }
  void operator()(float number) const { sqlite3_result_double(context, static_cast<double>(number)); }
  void operator()(double number) const { sqlite3_result_double(context, number); }
  void operator()(rt::Currency amount) const { sqlite3_result_int64(context, amount.Units()); }
  void operator()(rt::DateTime date) const { ResultText(context, date.ToIso()); }
  void operator()(const std::string& text) const { ResultText(context, text); }
  void operator()(const rt::Binary& bytes) const {
    // A null pointer would be a Null.
    static constexpr std::uint8_t kNothing = 0;
    sqlite3_result_blob64(context, bytes.empty() ? &kNothing : bytes.data(), bytes.size(), SQLITE_TRANSIENT);
  }
};

/// See RowList.
void ValueFunction(sqlite3_context* context, int, sqlite3_value** arguments) {
  auto* rows = static_cast<RowList*>(sqlite3_value_pointer(arguments[0], kRowsPointer));
  const rt::Value* value =
      rows ? rows->At(sqlite3_value_int64(arguments[1]), sqlite3_value_int64(arguments[2])) : nullptr;
  if (!value) return sqlite3_result_error(context, "a record to be written has no values", -1);
  std::visit(Result{context}, value->Data());
}

enum FitArgument { kValue, kForm, kColumn, kType, kSize, kTakesEmpty, kFitArguments };

/// The column that a call of dw_fit names, kept from row to row.
const ColumnInfo* ColumnOf(sqlite3_context* context, sqlite3_value** arguments) {
  if (const auto* kept = static_cast<const ColumnInfo*>(sqlite3_get_auxdata(context, kColumn))) return kept;
  auto column = std::make_unique<ColumnInfo>();
  column->name = ArgumentText(arguments[kColumn]);
  column->type = static_cast<ColumnType>(sqlite3_value_int(arguments[kType]));
  column->size = sqlite3_value_int(arguments[kSize]);
  column->allowZeroLength = sqlite3_value_int(arguments[kTakesEmpty]) != 0;
  sqlite3_set_auxdata(context, kColumn, column.release(),
                      [](void* kept) { delete static_cast<ColumnInfo*>(kept); });
  return static_cast<const ColumnInfo*>(sqlite3_get_auxdata(context, kColumn));
}

void FitFunction(sqlite3_context* context, int, sqlite3_value** arguments) {
  auto& refused = *static_cast<std::optional<StoreError>*>(sqlite3_user_data(context));
  try {
    const ColumnInfo* column = ColumnOf(context, arguments);
    if (!column) return sqlite3_result_error_nomem(context);
    RawRow cell;
    cell.Start(1);
    PutCell(cell, 0, ArgumentSource{arguments[kValue]});
    const auto form = static_cast<ColumnType>(sqlite3_value_int(arguments[kForm]));
    std::visit(Result{context}, FitToColumn(*column, cell.Decode(0, form)).Data());
  } catch (const StoreError& error) {
    refused = error;
    sqlite3_result_error(context, error.what(), -1);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

}  // namespace

void AddFunctions(sqlite3* db, std::optional<StoreError>& refused) {
  const int plain = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
  const auto add = [&](const char* name, int arguments, int flags, auto function) {
    sqlite3_create_function(db, name, arguments, flags, &refused, function, nullptr, nullptr);
  };
  add("ucase", 1, plain, CaseFunction<rt::UpperCase>);
  add("lcase", 1, plain, CaseFunction<rt::LowerCase>);
  add("dw_like", 2, plain, LikeFunction);
  add("dw_now", 0, SQLITE_UTF8, NowFunction);
  add("dw_date", 0, SQLITE_UTF8, DateFunction);
  add("dw_part", 2, plain, PartFunction);
  add("dw_value", 3, SQLITE_UTF8, ValueFunction);
  add("dw_fit", kFitArguments, plain, FitFunction);
}

}  // namespace store
