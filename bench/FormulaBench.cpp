// Formulas of reports, evaluated for one row.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "platform/print/formula/Formula.h"

namespace bench {
namespace {

const std::vector<std::string> kNames{"T.Text", "T.Number", "T.Amount", "T.Other", "T.Date"};
const std::vector<rt::Value> kRow{"TRK-0001", std::int32_t{7}, rt::Currency::FromWhole(12),
                                  rt::Currency::FromUnits(34'567), rt::DateTime(2026, 3, 1)};

class Scope : public print::FormulaScope {
 public:
  std::optional<int> FieldPlace(std::string_view name) const override {
    for (std::size_t i = 0; i < kNames.size(); ++i)
      if (kNames[i] == name) return static_cast<int>(i);
    return std::nullopt;
  }
  rt::ValueType FieldType(int place) const override { return kRow[static_cast<std::size_t>(place)].Type(); }
  std::shared_ptr<const print::FormulaNode> NamedFormula(std::string_view) const override { return nullptr; }
  std::optional<int> GroupOf(std::string_view) const override { return std::nullopt; }
};

class Values : public print::FormulaValues {
 public:
  const rt::Value& Field(int place) const override { return kRow[static_cast<std::size_t>(place)]; }
  rt::Value Neighbor(int, int) const override { return {}; }
  rt::Value TotalOf(int) const override { return {}; }
  bool FirstInGroup(int) const override { return false; }
  bool LastInGroup(int) const override { return false; }
  std::int64_t RowNumber() const override { return 1; }
  int PageNumber() const override { return 1; }
  rt::Value PageCount() const override { return {}; }
  bool Continued() const override { return false; }
  std::string ReportName() const override { return {}; }
  std::string User() const override { return {}; }
  rt::DateTime PrintTime() const override { return {}; }
};

void EvaluateFormula(benchmark::State& state, const char* text) {
  const auto formula = print::Formula::Read(text, Scope());
  const Values values;
  for (auto round : state) benchmark::DoNotOptimize(formula.Evaluate(values));
}
BENCHMARK_CAPTURE(EvaluateFormula, Sum, "{T.Amount} + {T.Other}");
BENCHMARK_CAPTURE(EvaluateFormula, Comparison, "{T.Text} = 'trk-0001'");
BENCHMARK_CAPTURE(EvaluateFormula, Cost,
                  "If({T.Number} > 0, Ratio({T.Amount} + {T.Other}, {T.Number}), Null)");

void TestSelection(benchmark::State& state) {
  const auto formula = print::Formula::Read(
      "{T.Text} = 'TRK-0001' AND ({T.Date} >= Date(2026,1,1) AND {T.Date} <= Date(2026,6,30))", Scope());
  const Values values;
  for (auto round : state) benchmark::DoNotOptimize(formula.Holds(values));
}
BENCHMARK(TestSelection);

void ReadFormula(benchmark::State& state) {
  const Scope scope;
  for (auto round : state)
    benchmark::DoNotOptimize(
        print::Formula::Read("If({T.Number} > 0, Ratio({T.Amount}, {T.Number}), Null)", scope));
}
BENCHMARK(ReadFormula);

}  // namespace
}  // namespace bench
