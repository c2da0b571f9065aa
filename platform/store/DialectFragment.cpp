#include "platform/store/DialectFragment.h"

#include <algorithm>

#include "platform/store/DialectSpelling.h"
#include "platform/store/StoreError.h"

namespace store::dialect {
namespace {

// The engine's parser gives up at 100; what surrounds an expression takes a dozen.
constexpr int kMostWeight = 75;
constexpr std::size_t kLongest = 200000;

// Never fewer than the tokens of a plain piece, with one more for the empty rules that the grammar puts
// between.
int Tokens(std::string_view sql) {
  int count = 1;
  bool inWord = false;
  for (const char c : sql) {
    const bool sign = c == '(' || c == ')' || c == ',';
    if (sign || (c != ' ' && !inWord)) ++count;
    inWord = c != ' ' && !sign;
  }
  return count;
}

void CheckSize(const Fragment& fragment) {
  if (fragment.weight > kMostWeight || fragment.text.size() > kLongest)
    throw StoreError(kSyntax, "The statement is nested too deeply or is too long.");
}

}  // namespace

ValueKind KindOf(ColumnType type) {
  switch (type) {
    case ColumnType::Counter:
    case ColumnType::Short:
    case ColumnType::Long:
      return ValueKind::Whole;
    case ColumnType::Boolean:
      return ValueKind::Boolean;
    case ColumnType::Single:
    case ColumnType::Double:
      return ValueKind::Real;
    case ColumnType::Currency:
      return ValueKind::Currency;
    case ColumnType::DateTime:
      return ValueKind::Date;
    case ColumnType::Text:
    case ColumnType::Memo:
      return ValueKind::Text;
    case ColumnType::LongBinary:
      return ValueKind::Binary;
  }
  return ValueKind::Unknown;
}

void NotPossible(std::string_view reason, const Fragment& fragment) {
  throw StoreError(kSyntax,
                   std::string(reason) + ": " +
                       (fragment.column ? "the column '" + fragment.column->name + "'." : fragment.text));
}

Fragment Build(Level level, ValueKind kind, std::initializer_list<Piece> pieces) {
  Fragment result;
  result.level = level;
  result.kind = kind;
  int before = 0;
  for (const Piece& piece : pieces) {
    if (!piece.fragment) {
      result.text += piece.plain;
      before += Tokens(piece.plain);
      result.weight = std::max(result.weight, before);
      continue;
    }
    const Fragment& part = *piece.fragment;
    result.text += part.text;
    result.weight = std::max(result.weight, before + part.weight);
    ++before;
    result.hasColumn = result.hasColumn || part.hasColumn;
    result.hasAggregate = result.hasAggregate || part.hasAggregate;
  }
  CheckSize(result);
  return result;
}

void AppendToList(Fragment& list, const Fragment& element) {
  if (!list.text.empty()) list.text += ", ";
  list.text += element.text;
  list.weight = std::max(list.weight, element.weight + 3);
  list.hasColumn = list.hasColumn || element.hasColumn;
  list.hasAggregate = list.hasAggregate || element.hasAggregate;
  CheckSize(list);
}

Fragment AtLeast(Level level, const Fragment& fragment) {
  if (fragment.level >= level) return fragment;
  Fragment wrapped = fragment;
  wrapped.text = "(" + fragment.text + ")";
  wrapped.level = Level::Atom;
  wrapped.weight = fragment.weight + 1;
  CheckSize(wrapped);
  return wrapped;
}

Fragment Plain(const Fragment& fragment) {
  if (!fragment.units) return fragment;
  Fragment amount = Build(Level::Atom, ValueKind::Real, {"(", fragment, " / 10000.0)"});
  amount.floating = true;
  amount.neverNull = fragment.neverNull;
  return amount;
}

Fragment AsText(const Spelling& spelled, const Fragment& fragment) {
  if (fragment.kind == ValueKind::Date || fragment.kind == ValueKind::Binary)
    NotPossible("This cannot be used as a text", fragment);
  Fragment value = Plain(fragment);
  if (value.kind != ValueKind::Real) return value;
  return spelled.NumberText(value, fragment.column && fragment.column->type == ColumnType::Single);
}

Fragment AsNumber(const Fragment& fragment) {
  if (fragment.kind == ValueKind::Date || fragment.kind == ValueKind::Binary)
    NotPossible("This cannot be calculated with", fragment);
  return Plain(fragment);
}

Fragment AsCondition(const Fragment& fragment) {
  if (fragment.kind == ValueKind::Date || fragment.kind == ValueKind::Binary ||
      fragment.kind == ValueKind::Text)
    NotPossible("This is no condition", fragment);
  return Plain(fragment);
}

void CheckComparable(const Fragment& a, const Fragment& b) {
  const auto open = [](const Fragment& f) {
    return f.kind == ValueKind::Date || f.kind == ValueKind::Unknown || f.kind == ValueKind::Null;
  };
  if (a.kind == ValueKind::Date && !open(b)) NotPossible("A date cannot be compared with this", b);
  if (b.kind == ValueKind::Date && !open(a)) NotPossible("A date cannot be compared with this", a);
}

Fragment WithoutCase(const Spelling& spelled, const Fragment& fragment) {
  if (!fragment.MayBeText() || fragment.column) return fragment;
  return spelled.WithoutCase(fragment);
}

namespace {

/// The type of a column whose cells look as the value does in the file's SQL.
ColumnType FormOf(const Fragment& value) {
  if (value.units) return ColumnType::Currency;
  switch (value.kind) {
    case ValueKind::Boolean:
      return ColumnType::Boolean;
    case ValueKind::Real:
    case ValueKind::Currency:
      return value.typed && value.typed->type == ColumnType::Single ? ColumnType::Single : ColumnType::Double;
    case ValueKind::Date:
      return ColumnType::DateTime;
    case ValueKind::Text:
      return ColumnType::Memo;
    case ValueKind::Binary:
      return ColumnType::LongBinary;
    case ValueKind::Whole:
    case ValueKind::Null:
    case ValueKind::Unknown:
      break;
  }
  return ColumnType::Long;
}

/// Throws 3075 for a value of a kind that is never meant for such a column.
void CheckMeant(const Spelling& spelled, const Fragment& value, ValueKind column) {
  switch (column) {
    case ValueKind::Boolean:
      AsCondition(value);
      break;
    case ValueKind::Whole:
    case ValueKind::Real:
    case ValueKind::Currency:
      AsNumber(value);
      break;
    case ValueKind::Text:
      AsText(spelled, value);
      break;
    default:
      break;
  }
}

}  // namespace

std::string Stored(const Spelling& spelled, const Fragment& value, const ColumnInfo& column) {
  const bool flag = column.type == ColumnType::Boolean;
  if (value.kind == ValueKind::Null) return flag ? "0" : value.text;
  if (flag && value.kind == ValueKind::Boolean && value.neverNull && !value.column) return value.text;
  CheckMeant(spelled, value, KindOf(column.type));
  return spelled.Fitted(value, FormOf(value), column).text;
}

}  // namespace store::dialect
