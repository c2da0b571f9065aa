#include "platform/store/Values.h"

#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/store/RawRow.h"
#include "platform/store/StoreError.h"

namespace store {

rt::Value RawRow::Decode(int index, ColumnType type) const {
  const Content& cell = cells_[static_cast<std::size_t>(index)];
  const auto bytes = [&] { return std::string_view(bytes_).substr(cell.offset, cell.length); };
  switch (cell.kind) {
    case Cell::Null:
      return rt::Null{};
    case Cell::Text:
      if (type == ColumnType::DateTime) {
        if (const auto date = rt::DateTime::FromIso(bytes())) return *date;
      }
      return rt::Value(bytes());
    case Cell::Binary: {
      const auto content = bytes();
      // In one piece, which pictures of many megabytes need.
      const auto* first = reinterpret_cast<const rt::Binary::value_type*>(content.data());
      return rt::Value(rt::Binary(first, first + content.size()));
    }
    case Cell::Whole:
      switch (type) {
        case ColumnType::Boolean:
          return cell.whole != 0;
        case ColumnType::Currency:
          return rt::Currency::FromUnits(cell.whole);
        case ColumnType::Single:
          return static_cast<float>(cell.whole);
        case ColumnType::Double:
          return static_cast<double>(cell.whole);
        case ColumnType::Short:
          if (cell.whole >= INT16_MIN && cell.whole <= INT16_MAX)
            return static_cast<std::int16_t>(cell.whole);
          break;
        case ColumnType::Text:
        case ColumnType::Memo:
          return std::to_string(cell.whole);
        default:
          break;
      }
      if (cell.whole >= INT32_MIN && cell.whole <= INT32_MAX) return static_cast<std::int32_t>(cell.whole);
      return static_cast<double>(cell.whole);
    case Cell::Real:
      if (type == ColumnType::Single) return static_cast<float>(cell.real);
      if (type == ColumnType::Currency) return rt::Currency::RoundedToEven(cell.real / 10000.0);
      return cell.real;
  }
  return rt::Null{};
}

std::string InColumn(const ColumnInfo& column, const std::string& text) {
  return text + " (field '" + column.name + "')";
}

rt::Value FitToColumn(const ColumnInfo& column, const rt::Value& value) {
  if (value.IsNull()) {
    if (column.type == ColumnType::Boolean) return false;
    return value;
  }
  try {
    switch (column.type) {
      case ColumnType::Counter:
      case ColumnType::Long:
        return value.AsLong();
      case ColumnType::Short:
        return value.AsInteger();
      case ColumnType::Boolean:
        return value.AsBoolean();
      case ColumnType::Single:
        return value.AsSingle();
      case ColumnType::Double:
        return value.AsDouble();
      case ColumnType::Currency:
        return value.AsCurrency();
      case ColumnType::DateTime:
        return value.AsDate();
      case ColumnType::LongBinary:
        return value.AsBinary();
      case ColumnType::Text:
      case ColumnType::Memo: {
        std::string text = value.AsText();
        // A NUL would cut the text short in every other program that reads the file.
        if (text.find('\0') != std::string::npos)
          throw StoreError(kTypeMismatch,
                           InColumn(column, "The text holds a character that cannot be stored."));
        if (column.type == ColumnType::Text && rt::Length(text) > static_cast<std::size_t>(column.size))
          throw StoreError(
              kFieldTooSmall,
              InColumn(column, "The field is too small for the text that was to be stored in it; it takes " +
                                   std::to_string(column.size) + " characters."));
        if (text.empty() && !column.allowZeroLength)
          throw StoreError(kZeroLength, InColumn(column, "The field cannot be an empty text."));
        return text;
      }
    }
  } catch (const rt::RuntimeError& error) {
    if (error.Number() == 6)
      throw StoreError(kOverflow, InColumn(column, "The number is beyond what the field can hold."));
    throw StoreError(kTypeMismatch, InColumn(column, "The value is of a kind that the field cannot hold."));
  }
  return value;
}

}  // namespace store
