// What runs over many transactions share: engine transactions, groups of commits, and the assets' fuel types.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "data/GenericDAO.h"

namespace dw {

/// Throws StoreError 3044 if the data file is no longer at its place. The engine notices that only when it
/// begins to write, and then each record would fail with a box of its own.
void RequireDataFile();

/// An engine transaction that is rolled back completely unless Commit is reached.
class RowTransaction {
 public:
  RowTransaction(dao::Workspace& workspace, dao::Commit how);
  ~RowTransaction();
  RowTransaction(const RowTransaction&) = delete;
  RowTransaction& operator=(const RowTransaction&) = delete;

  void Commit();

 private:
  dao::Workspace& workspace_;
  dao::Commit how_;
  bool committed_ = false;
};

/// The rows of a run that share a physical commit. What is committed stays so when an error ends the run.
class RowGroup {
 public:
  explicit RowGroup(dao::Workspace& workspace) : workspace_(workspace) {}
  ~RowGroup();
  RowGroup(const RowGroup&) = delete;
  RowGroup& operator=(const RowGroup&) = delete;

  /// Called before each row: nobody else can commit from here until the group's commit. Looks for the data
  /// file every few milliseconds; see RequireDataFile.
  void Enter();
  /// Puts everything on the disk. Errors of the engine come out here.
  void Finish() { workspace_.FinishGroup(); }

 private:
  dao::Workspace& workspace_;
  std::chrono::steady_clock::time_point looked_;
};

/// The fuel types of assets. Each is asked for once, for as long as nobody else can have changed it.
class AssetFuelTypes {
 public:
  explicit AssetFuelTypes(dao::Database& database) : database_(database) {}

  /// The fuel type of an asset on file, which may be Null; empty if there is no such asset.
  std::optional<rt::Value> Of(const rt::Value& assetID);

 private:
  dao::Database& database_;
  std::unordered_map<std::string, std::optional<rt::Value>> known_;
  std::uint64_t glance_ = 0;  ///< when they were asked for
  rt::Value last_;            ///< the asset that was asked for last
  std::optional<rt::Value> lastType_;
};

}  // namespace dw
