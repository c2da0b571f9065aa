// The functions of the language.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/formula/FormulaNode.h"

namespace print {

/// The arguments of a call at evaluation. Each is evaluated when it is asked for, so that If and Coalesce
/// leave the others alone.
class CallArguments {
 public:
  CallArguments(const FormulaNode& call, const FormulaValues& values) : call_(call), values_(values) {}
  std::size_t Count() const { return call_.operands.size(); }
  rt::Value At(std::size_t i) const { return Evaluate(*call_.operands[i], values_); }
  const FormulaValues& Values() const { return values_; }

 private:
  const FormulaNode& call_;
  const FormulaValues& values_;
};

/// What a function takes and gives.
struct FormulaFunction {
  std::string_view name;
  /// One letter for each argument: b condition, n number, w whole number, t text, d date, v date or number of
  /// a month, a anything. Letters behind '?' may be left out; the last one before '*' may be repeated.
  std::string_view arguments;
  /// b, n (a Double), w, t, d; s: as the first argument; c: as the values that it chooses from, which must be
  /// of one kind; m: as c, without the first argument.
  char result = 'a';
  /// Whether the result is Null when an argument is, without a call.
  bool nullIfAnyIs = true;
  rt::Value (*evaluate)(const CallArguments&) = nullptr;

  std::size_t Least() const;
  /// No limit is reported as the largest number.
  std::size_t Most() const;
  /// The letter of the argument with this place.
  char Letter(std::size_t place) const;
};

/// The function of this name, without regard to case; null if there is none.
const FormulaFunction* FindFunction(std::string_view name);
/// The names of all functions, for documents and completion.
std::vector<std::string_view> FunctionNames();

}  // namespace print
