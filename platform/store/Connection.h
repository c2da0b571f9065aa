// One open of a data file: statements, transactions, definitions.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/Holds.h"
#include "platform/store/Schema.h"
#include "platform/store/StoreError.h"

namespace store {

struct OpenRequest {
  std::string path;
  Share share = Share::Shared;
  bool readOnly = false;
};

/// The computer and user that rosters and refusals name: at first the machine's name and "admin"; the sign-on
/// sets the workstation's name and the user's.
void SetIdentity(const std::string& computer, const std::string& user);
const std::string& IdentityComputer();
const std::string& IdentityUser();

/// How a transaction is committed.
enum class Commit {
  Now,        ///< on the disk when the call returns
  WithGroup,  ///< whole or not at all, and on the disk with the others of its group: within a quarter of a
              ///< second, before the program waits for anything, and at FinishGroup at the latest
};

class Session;
struct QueryPlan;

/// A data file, opened. Everything throws StoreError. The object is one owner of record locks (see Holds).
///
/// A transaction costs nothing until its first write, and it never keeps the file from others while the
/// program waits for a person: before a message box or a sleep its writes are taken back and written again
/// when it goes on. The records it touched stay held all the time.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  /// Opens the file with its engine; see Engine::Open.
  static std::shared_ptr<Connection> Open(const OpenRequest& request);
  /// Makes an empty data file; see Engine::Create.
  static void Create(const std::string& path);
  /// For engines: what they do for this open of the file. `request` names the file as all its users do.
  Connection(std::unique_ptr<Session> session, std::unique_ptr<store::Holds> holds, OpenRequest request);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  const std::string& Path() const;
  bool ReadOnly() const;
  /// Who else is in the file, and what they hold.
  store::Holds& Holds();

  /// How long a write waits for another writer before it fails with 3188; 15 seconds unless set.
  void SetPatience(int milliseconds);
  /// See Reading.
  void StartReading();
  void EndReading();

  // --- statements
  /// Runs a statement that gives no rows; the number of records that it changed. 3260 when it touches a
  /// record that another holds: then nothing is changed.
  std::int64_t Execute(std::string_view sql);
  /// The translation of a query, kept for statements of the same shape.
  std::shared_ptr<const QueryPlan> Plan(std::string_view sql, std::vector<rt::Value>* parameters);

  // --- transactions
  void BeginTrans();
  void CommitTrans(Commit how = Commit::Now);
  void RollbackTrans();
  int TransactionDepth() const;
  /// Commits what a group still keeps back.
  void FinishGroup();
  /// Takes back what a group still keeps back and ends it.
  void AbandonGroup();
  /// Starts writing now, so that what is read next cannot change before the group is committed. Only between
  /// BeginTrans … CommitTrans(WithGroup) pairs; the group's limits hold from here.
  void EnterGroup();
  /// A number that stays the same for as long as others cannot have changed what was read under it; 0 where
  /// nothing keeps them from it. Inside a group they cannot.
  std::uint64_t Glance() const;

  // --- definitions; each is refused (3009) while another holds a record of the table
  std::shared_ptr<const Schema> Tables();
  void CreateTable(const TableInfo& table);
  void DropTable(std::string_view table);
  void AddColumn(std::string_view table, const ColumnInfo& column);
  void DropColumn(std::string_view table, std::string_view column);
  void RenameColumn(std::string_view table, std::string_view column, std::string_view newName);
  void CreateIndex(std::string_view table, const IndexInfo& index);
  void DropIndex(std::string_view table, std::string_view index);
  /// What the planner of queries should expect of an index: the table's rows, and the rows that share the
  /// first field, the first two, and so on. A new file cannot be counted yet.
  void Expect(std::string_view table, std::string_view index, const std::vector<std::int64_t>& rows);
  std::vector<RelationInfo> Relations();
  void AddRelation(const RelationInfo& relation);

  /// The engine's own test of the file's structure: one line for each fault, none for a sound file.
  std::vector<std::string> CheckIntegrity();

  class Impl;
  Impl& Internals() { return *impl_; }

 private:
  std::unique_ptr<Impl> impl_;
};

/// Lets several readings share one look at the file for as long as it lives, which saves the asking for it
/// each time. Others cannot commit meanwhile: for a few milliseconds at the most. Ended early by a write or a
/// wait.
class Reading {
 public:
  explicit Reading(const std::shared_ptr<Connection>& connection) : connection_(connection) {
    connection_->StartReading();
  }
  ~Reading();
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  std::shared_ptr<Connection> connection_;
};

/// Gives every file back to other users: commits the groups of all connections of this process and takes back
/// what unfinished transactions have written, to be written again when they go on. Called before every wait.
void YieldFiles();

}  // namespace store
