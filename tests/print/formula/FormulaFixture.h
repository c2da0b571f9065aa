// Fields, named formulas and one row for tests of the language.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/print/formula/Formula.h"
#include "platform/runtime/Text.h"

namespace print::test {

struct TestField {
  std::string name;
  rt::ValueType type;
  rt::Value value;
};

class TestScope : public FormulaScope {
 public:
  std::vector<TestField> fields;
  std::map<std::string, Formula> formulas;
  std::vector<std::string> groups;

  void Define(const std::string& name, const std::string& text) {
    formulas[name] = Formula::Read(text, *this);
  }

  std::optional<int> FieldPlace(std::string_view name) const override {
    for (std::size_t i = 0; i < fields.size(); ++i)
      if (rt::EqualNoCase(fields[i].name, name)) return static_cast<int>(i);
    return std::nullopt;
  }
  rt::ValueType FieldType(int place) const override { return fields[static_cast<std::size_t>(place)].type; }
  std::shared_ptr<const FormulaNode> NamedFormula(std::string_view name) const override {
    const auto found = formulas.find(std::string(name));
    return found == formulas.end() ? nullptr : found->second.Tree();
  }
  std::optional<int> GroupOf(std::string_view key) const override {
    for (std::size_t i = 0; i < groups.size(); ++i)
      if (rt::EqualNoCase(groups[i], key)) return static_cast<int>(i);
    return std::nullopt;
  }
};

/// One row, with a row before it whose fields are all Null.
class TestValues : public FormulaValues {
 public:
  explicit TestValues(const TestScope& scope) : scope_(scope) {}
  std::vector<rt::Value> totals;
  rt::Value pages;

  const rt::Value& Field(int place) const override {
    return scope_.fields[static_cast<std::size_t>(place)].value;
  }
  rt::Value Neighbor(int place, int distance) const override {
    return distance < 0 ? rt::Value() : Field(place);
  }
  rt::Value TotalOf(int total) const override { return totals.at(static_cast<std::size_t>(total)); }
  bool FirstInGroup(int group) const override { return group == 0; }
  bool LastInGroup(int group) const override { return group == 1; }
  std::int64_t RowNumber() const override { return 7; }
  int PageNumber() const override { return 3; }
  rt::Value PageCount() const override { return pages; }
  bool Continued() const override { return true; }
  std::string ReportName() const override { return "Divisions"; }
  std::string User() const override { return "ANN"; }
  rt::DateTime PrintTime() const override { return {2026, 3, 1, 14, 5, 9}; }

 private:
  const TestScope& scope_;
};

/// The fields of a small fleet.
inline TestScope FleetScope() {
  using rt::ValueType;
  TestScope scope;
  scope.fields = {
      {"Vehicles.Asset ID", ValueType::Text, "BUS-001"},
      {"Vehicles.VIN/Serial Number", ValueType::Text, "1O'Neil"},
      {"Vehicles.Class ID", ValueType::Text, "Trk"},
      {"Vehicles.Model Year", ValueType::Integer, std::int16_t{1999}},
      {"Vehicles.Purchase Date", ValueType::Date, rt::DateTime(1999, 5, 31)},
      {"Vehicles.No_Longer_In_Service", ValueType::Boolean, false},
      {"Vehicles.Photograph", ValueType::Binary, rt::Binary{1}},
      {"Costs.Cost", ValueType::Currency, rt::Currency::FromUnits(1'000'005)},
      {"Costs.Units", ValueType::Single, 0.1F},
      {"Costs.Miles", ValueType::Double, 12.5},
      {"Costs.Count", ValueType::Long, std::int32_t{40}},
      {"Costs.Nothing", ValueType::Currency, rt::Null{}},
      {"Costs.No Date", ValueType::Date, rt::Null{}},
      {"Costs.No Text", ValueType::Text, rt::Null{}},
      {"Costs.Anything", ValueType::Null, "abc"},
  };
  scope.groups = {"Vehicles.Class ID", "@Year"};
  scope.Define("Year", "Year({Vehicles.Purchase Date})");
  scope.Define("Twice", "{Costs.Cost} * 2");
  scope.Define("Sums", "Sum({Costs.Cost}) + Sum({Costs.Count}, report)");
  return scope;
}

}  // namespace print::test
