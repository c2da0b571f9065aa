// Pieces of the file's SQL, with what must be known of them to put them together.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/store/Schema.h"

namespace store::dialect {

class Spelling;

/// How tightly the outermost operator binds in the file's SQL. An operand that binds more loosely gets
/// parentheses.
enum class Level { Or, And, Not, Compare, Add, Multiply, Join, Atom };

enum class ValueKind { Unknown, Null, Boolean, Whole, Real, Currency, Date, Text, Binary };

ValueKind KindOf(ColumnType type);

struct Fragment {
  std::string text;
  Level level = Level::Atom;
  ValueKind kind = ValueKind::Unknown;
  int table = -1;                      ///< of a column alone
  const ColumnInfo* column = nullptr;  ///< likewise
  const ColumnInfo* typed =
      nullptr;         ///< a column whose type the value has: itself, or the one under MIN and MAX
  bool units = false;  ///< Currency in ten-thousandths, as the file has it
  bool floating =
      false;  ///< certainly not a whole number to the engine, so that dividing it keeps the fraction
  bool neverNull = false;
  bool hasColumn = false;
  bool hasAggregate = false;
  int weight = 1;  ///< places on the engine's parser stack (it has 100) that reading it takes

  bool IsTextColumn() const { return column && kind == ValueKind::Text; }
  bool MayBeText() const { return kind == ValueKind::Text || kind == ValueKind::Unknown; }
};

/// A piece of a fragment: plain SQL, or a fragment that goes into it unchanged.
struct Piece {
  Piece(const char* sql) : plain(sql) {}
  Piece(std::string_view sql) : plain(sql) {}
  Piece(const Fragment& part) : fragment(&part) {}
  std::string_view plain;
  const Fragment* fragment = nullptr;
};

/// Joins pieces. Throws 3075 for what the engine's parser could not read for its depth or length.
Fragment Build(Level level, ValueKind kind, std::initializer_list<Piece> pieces);
/// Appends an element to a list in parentheses; the engine reads such a list element by element.
void AppendToList(Fragment& list, const Fragment& element);
/// The fragment, in parentheses if it binds more loosely than `level`.
Fragment AtLeast(Level level, const Fragment& fragment);

/// The value as the dialect sees it: a count of ten-thousandths becomes the amount.
Fragment Plain(const Fragment& fragment);
/// The plain value as a text: numbers without a needless ".0". Throws 3075 for dates and binaries, whose form
/// in the file is not the one that people know.
Fragment AsText(const Spelling& spelled, const Fragment& fragment);
/// The plain value, to calculate with. Throws 3075 for dates and binaries.
Fragment AsNumber(const Fragment& fragment);
/// The plain value, to decide with. Throws 3075 for texts, dates and binaries.
Fragment AsCondition(const Fragment& fragment);
/// Throws 3075 if a date is compared with something that is not a date.
void CheckComparable(const Fragment& a, const Fragment& b);
/// A text expression for sorting and grouping without regard to case; columns do that by themselves.
Fragment WithoutCase(const Spelling& spelled, const Fragment& fragment);

/// The expression that stores a value in a column: converted as a recordset converts it, see FitToColumn,
/// with a statement that fails if the value does not fit. Throws 3075 for a text that is to become a flag,
/// and for a date that is to become a text or a number.
std::string Stored(const Spelling& spelled, const Fragment& value, const ColumnInfo& column);

/// Throws 3075.
[[noreturn]] void NotPossible(std::string_view reason, const Fragment& fragment);

}  // namespace store::dialect
