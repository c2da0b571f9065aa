#include "platform/store/sqlite/SqliteSpelling.h"

#include "platform/runtime/Text.h"

namespace store {
namespace dialect {
namespace {

class SqliteSpelling : public Spelling {
 public:
  Fragment WithoutCase(const Fragment& text) const override {
    Fragment result = Build(Level::Atom, text.kind, {AtLeast(Level::Atom, text), " COLLATE NOCASE"});
    result.neverNull = text.neverNull;
    return result;
  }
  Fragment Like(const Fragment& pattern, const Fragment& text) const override {
    return Build(Level::Atom, ValueKind::Boolean, {"dw_like(", pattern, ", ", text, ")"});
  }

  Fragment Upper(const Fragment& text) const override { return OfText("ucase(", text, ValueKind::Text); }
  Fragment Lower(const Fragment& text) const override { return OfText("lcase(", text, ValueKind::Text); }
  Fragment Trimmed(const Fragment& text) const override { return OfText("trim(", text, ValueKind::Text); }
  Fragment Length(const Fragment& text) const override { return OfText("length(", text, ValueKind::Whole); }
  Fragment Left(const Fragment& text, const Fragment& count) const override {
    return Build(Level::Atom, ValueKind::Text, {"substr(", text, ", 1, MAX(", count, ", 0))"});
  }
  // With the length beside the place from the end: a place before the beginning then gives the whole text,
  // and none at all the empty one.
  Fragment Right(const Fragment& text, const Fragment& count) const override {
    return Build(Level::Atom, ValueKind::Text,
                 {"substr(", text, ", -MAX(", count, ", 0), MAX(", count, ", 0))"});
  }
  Fragment Middle(const Fragment& text, const Fragment& start,
                  const std::optional<Fragment>& count) const override {
    if (!count) return Build(Level::Atom, ValueKind::Text, {"substr(", text, ", MAX(", start, ", 1))"});
    return Build(Level::Atom, ValueKind::Text,
                 {"substr(", text, ", MAX(", start, ", 1), MAX(", *count, ", 0))"});
  }

  Fragment Absolute(const Fragment& number) const override { return OfNumber("abs(", number); }
  Fragment Floor(const Fragment& number) const override { return OfNumber("floor(", number); }
  Fragment Floating(const Fragment& number) const override {
    Fragment result = Build(Level::Atom, ValueKind::Real, {"CAST(", number, " AS REAL)"});
    result.floating = true;
    return result;
  }
  Fragment NumberText(const Fragment& number, bool single) const override {
    const char* format =
        single ? " IS NULL THEN NULL ELSE printf('%.7g', " : " IS NULL THEN NULL ELSE printf('%.15g', ";
    return Build(Level::Atom, ValueKind::Text,
                 {"CASE WHEN ", AtLeast(Level::Add, number), format, number, ") END"});
  }

  Fragment Part(DatePart part, const Fragment& date) const override {
    const char* letter = part == DatePart::Year ? "'y')" : part == DatePart::Month ? "'m')" : "'d')";
    return Build(Level::Atom, ValueKind::Whole, {"dw_part(", date, ", ", std::string_view(letter)});
  }
  Fragment Now() const override { return Build(Level::Atom, ValueKind::Date, {"dw_now()"}); }
  Fragment Today() const override { return Build(Level::Atom, ValueKind::Date, {"dw_date()"}); }

  Fragment Fitted(const Fragment& value, ColumnType form, const ColumnInfo& column) const override {
    const auto number = [](auto one) { return std::to_string(static_cast<int>(one)); };
    const std::string rest = ", " + number(form) + ", " + rt::Quoted(column.name) + ", " +
                             number(column.type) + ", " + number(column.size) + ", " +
                             number(column.allowZeroLength) + ")";
    return Build(Level::Atom, KindOf(column.type), {"dw_fit(", value, std::string_view(rest)});
  }

  std::string Limit(std::int64_t rows) const override { return " LIMIT " + std::to_string(rows); }

 private:
  static Fragment OfText(std::string_view opening, const Fragment& text, ValueKind kind) {
    Fragment result = Build(Level::Atom, kind, {opening, text, ")"});
    result.neverNull = text.neverNull;
    return result;
  }
  static Fragment OfNumber(std::string_view opening, const Fragment& number) {
    Fragment result = Build(Level::Atom, number.kind, {opening, number, ")"});
    result.floating = number.floating;
    return result;
  }
};

}  // namespace

}  // namespace dialect

const dialect::Spelling& SqliteWords() {
  static const dialect::SqliteSpelling spelling;
  return spelling;
}

}  // namespace store
