// Tables and queries for other programs.
#include <cctype>
#include <iostream>
#include <optional>

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "platform/runtime/Text.h"
#include "platform/store/Cursor.h"
#include "tools/dwadmin/Commands.h"
#include "tools/dwadmin/Output.h"

namespace dw {
namespace {

bool IsSelect(const std::string& source) {
  const std::string text = rt::Trim(source);
  constexpr std::size_t kLength = 6;
  return text.size() > kLength && rt::EqualNoCase(text.substr(0, kLength), "SELECT") &&
         std::isspace(static_cast<unsigned char>(text[kLength])) != 0;
}

/// Opens the source in the first data file that has its tables. If none has them, throws the error of the
/// main file.
std::unique_ptr<store::Cursor> OpenSource(const std::string& source) {
  const std::string query =
      IsSelect(source) ? source : "SELECT * FROM [" + StripBrackets(rt::Trim(source)) + "]";
  std::optional<store::StoreError> first;
  for (const char* file : kDataFiles) {
    if (first && !FileExists(FindFile(DataPath, file))) continue;
    try {
      return store::Cursor::OpenQuery(store::Connection::Open({.path = RequireFile(file), .readOnly = true}),
                                      query, store::Locking::ReadOnly);
    } catch (const store::StoreError& error) {
      if (error.Number() != store::kTableNotFound) throw;
      if (!first) first = error;
    }
  }
  throw *first;
}

/// The values of the row; empty if another user has deleted it meanwhile.
std::optional<std::vector<rt::Value>> RowOf(store::Cursor& rows) {
  std::vector<rt::Value> values;
  try {
    for (int i = 0; i < static_cast<int>(rows.Fields().size()); ++i) values.push_back(rows.Get(i));
  } catch (const store::StoreError& error) {
    if (error.Number() != store::kRecordDeleted) throw;
    return std::nullopt;
  }
  return values;
}

void WriteCsvLine(const std::vector<rt::Value>& values) {
  std::string line;
  for (const rt::Value& value : values) {
    if (&value != &values.front()) line += ',';
    line += CsvField(value);
  }
  std::cout << line << "\r\n";
}

}  // namespace

int Export(const std::string& source, Format format) {
  const auto rows = OpenSource(source);
  std::vector<std::string> columns;
  for (const store::FieldInfo& field : rows->Fields()) columns.push_back(field.name);
  const bool json = format == Format::Json;
  if (json) {
    std::cout << '[';
  } else {
    WriteCsvLine({columns.begin(), columns.end()});
  }
  bool any = false;
  // The reader of the output may have gone; then there is nothing left to do.
  for (; !rows->AtEnd() && std::cout; rows->MoveNext()) {
    const auto values = RowOf(*rows);
    if (!values) continue;
    if (json) {
      std::cout << (any ? ",\n  " : "\n  ");
      WriteJsonObject(std::cout, columns, *values);
    } else {
      WriteCsvLine(*values);
    }
    any = true;
  }
  if (json) std::cout << (any ? "\n]\n" : "]\n");
  return 0;
}

}  // namespace dw
