// How the engine underneath writes what every engine can do but each one writes in its own words. The emitter
// decides what a statement means and asks here how it is written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/store/DialectFragment.h"

namespace store::dialect {

enum class DatePart { Year, Month, Day };

/// One engine's words. The returned fragments keep whether they can be Null only where the comment says so.
class Spelling {
 public:
  virtual ~Spelling() = default;

  /// A text that compares, sorts and groups without regard to case, as text columns do by themselves.
  virtual Fragment WithoutCase(const Fragment& text) const = 0;
  /// Whether a text fits a pattern; see LikeMatch.
  virtual Fragment Like(const Fragment& pattern, const Fragment& text) const = 0;

  virtual Fragment Upper(const Fragment& text) const = 0;
  virtual Fragment Lower(const Fragment& text) const = 0;
  virtual Fragment Trimmed(const Fragment& text) const = 0;
  virtual Fragment Length(const Fragment& text) const = 0;
  /// A negative count or a place before the first counts as none.
  virtual Fragment Left(const Fragment& text, const Fragment& count) const = 0;
  virtual Fragment Right(const Fragment& text, const Fragment& count) const = 0;
  virtual Fragment Middle(const Fragment& text, const Fragment& start,
                          const std::optional<Fragment>& count) const = 0;

  virtual Fragment Absolute(const Fragment& number) const = 0;
  /// The next whole number below.
  virtual Fragment Floor(const Fragment& number) const = 0;
  /// The number as a floating one, so that dividing it keeps the fraction.
  virtual Fragment Floating(const Fragment& number) const = 0;
  /// A floating number as a text without a needless ".0"; a Single has fewer digits.
  virtual Fragment NumberText(const Fragment& number, bool single) const = 0;

  virtual Fragment Part(DatePart part, const Fragment& date) const = 0;
  virtual Fragment Now() const = 0;
  virtual Fragment Today() const = 0;

  /// The value as a column takes it; see FitToColumn. `form` is the type of a column whose cells look like
  /// the value.
  virtual Fragment Fitted(const Fragment& value, ColumnType form, const ColumnInfo& column) const = 0;

  /// What follows a query that returns so many rows at most.
  virtual std::string Limit(std::int64_t rows) const = 0;
};

}  // namespace store::dialect
