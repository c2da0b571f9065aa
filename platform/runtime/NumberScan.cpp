#include "platform/runtime/NumberScan.h"

namespace rt {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  std::optional<ScannedNumber> Read() {
    SkipBlanks();
    const bool parentheses = Take('(');
    if (!ReadSignAndDollar(parentheses) || !ReadDigits() || !ReadExponent()) return std::nullopt;
    SkipBlanks();
    if (parentheses && !Take(')')) return std::nullopt;
    SkipBlanks();
    if (!rest_.empty()) return std::nullopt;
    result_.negative = negative_ || parentheses;
    return std::move(result_);
  }

 private:
  void SkipBlanks() {
    while (!rest_.empty() && (rest_.front() == ' ' || rest_.front() == '\t')) rest_.remove_prefix(1);
  }

  bool Take(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }

  /// A sign and "$", each at most once, in either order. Within parentheses, a sign would be redundant.
  bool ReadSignAndDollar(bool parentheses) {
    bool sign = false;
    bool dollar = false;
    for (;;) {
      SkipBlanks();
      if (Take('$')) {
        if (dollar) return false;
        dollar = true;
      } else if (!rest_.empty() && (rest_.front() == '-' || rest_.front() == '+')) {
        if (sign || parentheses) return false;
        sign = true;
        negative_ = rest_.front() == '-';
        rest_.remove_prefix(1);
      } else {
        return true;
      }
    }
  }

  void Keep(char digit) {
    if (digit != '0' || !result_.digits.empty()) result_.digits.push_back(digit);
  }

  bool ReadDigits() {
    int inGroup = 0;
    bool commas = false;
    bool any = false;
    for (; !rest_.empty(); rest_.remove_prefix(1)) {
      const char c = rest_.front();
      if (IsDigit(c)) {
        Keep(c);
        ++inGroup;
        any = true;
      } else if (c == ',') {
        if (inGroup == 0 || inGroup > 3 || (commas && inGroup != 3)) return false;
        commas = true;
        inGroup = 0;
      } else {
        break;
      }
    }
    if (commas && inGroup != 3) return false;
    if (Take('.')) {
      for (; !rest_.empty() && IsDigit(rest_.front()); rest_.remove_prefix(1)) {
        Keep(rest_.front());
        --result_.exponent;
        any = true;
      }
    }
    return any;
  }

  bool ReadExponent() {
    // Far beyond the range of every type, and far from the limits of int.
    static constexpr int kLargest = 100'000;
    if (!Take('E') && !Take('e')) return true;
    const bool minus = Take('-');
    if (!minus) Take('+');
    if (rest_.empty() || !IsDigit(rest_.front())) return false;
    int exponent = 0;
    for (; !rest_.empty() && IsDigit(rest_.front()); rest_.remove_prefix(1)) {
      if (exponent < kLargest) exponent = exponent * 10 + (rest_.front() - '0');
    }
    if (exponent > kLargest) exponent = kLargest;
    result_.exponent += minus ? -exponent : exponent;
    return true;
  }

  std::string_view rest_;
  ScannedNumber result_;
  bool negative_ = false;
};

}  // namespace

std::optional<ScannedNumber> ScanNumber(std::string_view text) { return Scanner(text).Read(); }

}  // namespace rt
