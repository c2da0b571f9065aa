#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "platform/runtime/Value.h"
#include "support/TempDirectory.h"

namespace test {

/// Columns and their values.
using Row = std::vector<std::pair<std::string, rt::Value>>;

/// An amount of money.
rt::Value Money(double amount);

/// A data directory of its own with an empty main file, which is the program's data path, and short ways to
/// fill and read it. Each function opens the file for itself and closes it again, so that a test can start
/// second processes in between. The signed-on user is "TESTER".
class SmallFleet {
 public:
  /// Creates DW.MDB and the other named files ("DW_USERS.MDB").
  explicit SmallFleet(std::initializer_list<const char*> otherFiles = {});
  ~SmallFleet();
  SmallFleet(const SmallFleet&) = delete;
  SmallFleet& operator=(const SmallFleet&) = delete;

  /// The path of a file in the data directory.
  std::string Path(const std::string& name = "DW.MDB") const { return directory_.Path(name); }

  /// These return the new row's ID.
  std::int32_t Add(const std::string& table, const Row& row, const std::string& file = "DW.MDB");
  std::int32_t AddAsset(const std::string& code, const rt::Value& fuelType = 1, const Row& more = {});
  /// A transaction as the transaction window creates one: zeros in the costs, Nulls in `Oil` and `Time`,
  /// 3/1/2026.
  std::int32_t AddTransaction(const std::string& asset, const rt::Value& year, const rt::Value& period,
                              const Row& more = {});
  /// Adds many transactions at once; `make` fills the row for a number from 0 and returns the code of its
  /// asset.
  void AddTransactions(int count, const std::function<std::string(int number, Row& row)>& make);

  /// Runs a statement; returns the number of changed records.
  std::int64_t Run(const std::string& sql, const std::string& file = "DW.MDB");
  /// The first value of the first row as text: "Null" for a Null, "no row" if there is none.
  std::string Ask(const std::string& sql, const std::string& file = "DW.MDB");
  /// A column of `Maintenance Transactions`, in the form of Ask.
  std::string OfTransaction(std::int32_t id, const std::string& column);
  /// A sum of a cost table, found by the table's own key: {asset or fuel type, year, period}.
  std::string Sum(const std::string& table, const std::vector<rt::Value>& key, const std::string& column);
  /// Every row of a table in one text, to see whether anything has changed.
  std::string Everything(const std::string& table);

 private:
  TempDirectory directory_;
};

}  // namespace test
