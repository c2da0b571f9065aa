// The checker of a random walk: the acknowledged changes, in the order of the versions that they wrote, must
// lead to the contents of the file.
#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "platform/store/Cursor.h"
#include "support/Apart.h"
#include "support/WalkLog.h"

namespace walk {
namespace {

using RowId = std::pair<char, std::int64_t>;

struct Stored {
  std::int64_t version = 0, token = 0, amount = 0, group = 0;
};

std::string NameOf(const RowId& row) {
  return (row.first == 'W' ? "row " : "maintenance transaction ") + std::to_string(row.second);
}
std::string WhoWrote(const Transaction& t) {
  return "worker " + std::to_string(t.token / kTokensOfWorker) + " in step " +
         std::to_string(t.token % kTokensOfWorker) + " (" + kWorkNames[static_cast<std::size_t>(t.work)] +
         ")";
}

class Replay {
 public:
  Replay(const std::string& path, const std::vector<Transaction>& all) : all_(all) {
    ReadFile(path);
    for (const Transaction& t : all_) tokens_[t.token] = &t;
  }

  std::string Run() {
    for (const Transaction& t : all_)
      if (t.end == End::Acknowledged) Apply(t);
    LearnReads();
    for (const Transaction& t : all_)
      if (t.end == End::Unknown && t.group == 0) Decide(t);
    for (const auto& [row, stored] : stored_) CheckRow(row, stored);
    for (const auto& [row, writers] : writers_)
      // A row that a cut off transaction was to add has no writer where it was not stored.
      if (!writers.empty() && !stored_.contains(row) && !deleted_.contains(row))
        Fault(NameOf(row) + " is gone, though " + WhoWrote(*writers.rbegin()->second.transaction) +
              " wrote it");
    for (const auto& [row, deleter] : deleted_)
      if (stored_.contains(row))
        Fault(NameOf(row) + " is there, though " + WhoWrote(*deleter) + " deleted it");
    CheckTransfers();
    return faults_.Text();
  }

 private:
  struct Writer {
    const Transaction* transaction = nullptr;
    std::int64_t amount = 0;
  };

  void Fault(const std::string& text) {
    if (++faultCount_ <= 20) faults_.Add(text);
  }

  void ReadFile(const std::string& path) {
    const auto file = store::Connection::Open({.path = path, .readOnly = true});
    auto rows = store::Cursor::OpenQuery(
        file, "SELECT [ID], [Version], [Token], [Amount], [Group] FROM [Walk]", store::Locking::ReadOnly);
    for (; !rows->AtEnd(); rows->MoveNext())
      stored_[{'W', rows->Get(0).AsLong()}] = {rows->Get(1).AsLong(), rows->Get(2).AsLong(),
                                               rows->Get(3).AsLong(), rows->Get(4).AsLong()};
    rows = store::Cursor::OpenQuery(
        file,
        "SELECT [ID], [Work Order Number] FROM [Maintenance Transactions] WHERE [ID] <= " +
            std::to_string(kMaintenanceRows),
        store::Locking::ReadOnly);
    for (; !rows->AtEnd(); rows->MoveNext()) {
      Stored stored;
      const std::string text = rows->Get(1).Shown();
      if (const auto colon = text.find(':'); colon != std::string::npos)
        stored = {std::stoll(text.substr(0, colon)), std::stoll(text.substr(colon + 1)), 0, 0};
      stored_[{'M', rows->Get(0).AsLong()}] = stored;
    }
  }

  void Apply(const Transaction& t) {
    for (const Change& c : t.changes) {
      const RowId row{c.table, c.row};
      if (c.kind == 'X') {
        if (const auto [other, added] = deleted_.emplace(row, &t); !added)
          Fault(NameOf(row) + " was deleted by " + WhoWrote(t) + " and by " + WhoWrote(*other->second));
        continue;
      }
      const auto [other, added] = writers_[row].emplace(c.version + 1, Writer{&t, c.amount});
      if (!added)
        Fault(NameOf(row) + ": version " + std::to_string(c.version + 1) + " was written by " +
              WhoWrote(*other->second.transaction) + " and by " + WhoWrote(t) + "; one of them is lost");
    }
    if (t.group != 0) bulks_[t.group].push_back(t.groupAmount);
  }

  /// A value read during a hold on its row is the value of the file at that time.
  void LearnReads() {
    for (const auto& [row, stored] : stored_) known_[row][stored.version] = stored.token;
    for (const Transaction& t : all_) {
      if (t.end == End::Refused) continue;
      for (const Change& c : t.changes) {
        if (c.kind == 'N' || c.token < 0 || c.token == t.token) continue;
        // A group that was undone or cut off has also read its own earlier transactions.
        const auto writer = tokens_.find(c.token);
        if (t.end == End::Unknown && writer != tokens_.end() && writer->second->end == End::Unknown &&
            c.token / kTokensOfWorker == t.token / kTokensOfWorker)
          continue;
        const RowId row{c.table, c.row};
        const auto [known, added] = known_[row].emplace(c.version, c.token);
        if (!added && known->second != c.token)
          Fault(NameOf(row) + ": version " + std::to_string(c.version) + " was read by " + WhoWrote(t) +
                " with the mark of " + Marked(c.token) + ", and elsewhere with that of " +
                Marked(known->second));
      }
    }
  }
  std::string Marked(std::int64_t token) const {
    const auto found = tokens_.find(token);
    return found == tokens_.end() ? "step " + std::to_string(token) : WhoWrote(*found->second);
  }

  /// Whether a transaction that a kill cut off is in the file. All of its changes must lead to the same
  /// answer.
  void Decide(const Transaction& t) {
    std::optional<bool> applied;
    bool both = false;
    const auto says = [&](bool yes) {
      if (applied && *applied != yes) both = true;
      applied = yes;
    };
    for (const Change& c : t.changes) {
      RowId row{c.table, c.row};
      if (c.kind == 'X') {
        if (stored_.contains(row)) says(false);
        continue;
      }
      if (c.row == 0) {
        // Unless somebody has changed a new row since, its mark identifies it.
        for (const auto& [id, versions] : known_)
          if (const auto first = versions.find(1); first != versions.end() && first->second == t.token) {
            writers_[id].emplace(1, Writer{&t, c.amount});
            says(true);
          }
        continue;
      }
      const auto known = known_[row].find(c.version + 1);
      if (known != known_[row].end() && (known->second != -1))
        says(known->second == t.token);
      else if (const auto w = writers_[row].find(c.version + 1); w != writers_[row].end())
        says(false);
      else if (!stored_.contains(row))
        continue;
      else if (stored_[row].version <= c.version)
        says(false);
    }
    if (both) Fault("a part of the transaction of " + WhoWrote(t) + " is in the file, and a part is not");
    if (applied.value_or(false)) {
      for (const Change& c : t.changes) {
        if (c.kind == 'X')
          deleted_.emplace(RowId{c.table, c.row}, &t);
        else if (c.row != 0)
          writers_[{c.table, c.row}].emplace(c.version + 1, Writer{&t, c.amount});
      }
    } else if (!applied) {
      for (const Change& c : t.changes) {
        const RowId row{c.table, c.row};
        open_[row].insert(c.version + 1);
        if (c.kind == 'X' && !stored_.contains(row)) deleted_.emplace(row, &t);
      }
    }
  }

  void CheckRow(const RowId& row, const Stored& stored) {
    const auto& writers = writers_[row];
    std::int64_t amount = 0;
    std::int64_t written = 0;
    for (const auto& [version, writer] : writers) {
      if (version > stored.version) {
        Fault(NameOf(row) + ": version " + std::to_string(version) + ", which " +
              WhoWrote(*writer.transaction) + " wrote, is lost; the file has version " +
              std::to_string(stored.version));
        return;
      }
      const auto& known = known_[row];
      const auto read = known.find(version);
      if (read != known.end() && read->second != writer.transaction->token)
        Fault(NameOf(row) + ": version " + std::to_string(version) + ", which " +
              WhoWrote(*writer.transaction) + " wrote, bears the mark of " + Marked(read->second));
      ++written;
      amount += writer.amount;
    }
    std::int64_t bulks = 0;
    if (const auto found = bulks_.find(static_cast<int>(stored.group));
        found != bulks_.end() && row.first == 'W') {
      bulks = static_cast<std::int64_t>(found->second.size());
      for (const std::int64_t each : found->second) amount += each;
    }
    const std::int64_t missing = stored.version - written - bulks;
    // Each of them accounts for the one version that it was to write.
    std::int64_t doubtful = 0;
    for (const std::int64_t version : open_[row])
      if (version <= stored.version && !writers.contains(version)) ++doubtful;
    for (const Transaction& t : all_)
      if (t.end == End::Unknown && t.group != 0 && t.group == stored.group) ++doubtful;
    if (missing < 0)
      Fault(NameOf(row) + ": the file has version " + std::to_string(stored.version) + " after " +
            std::to_string(written) + " changes and " + std::to_string(bulks) + " bulk changes; " +
            std::to_string(-missing) + " are lost");
    else if (missing > doubtful)
      Fault(NameOf(row) + ": the file has version " + std::to_string(stored.version) + " after " +
            std::to_string(written) + " changes and " + std::to_string(bulks) + " bulk changes; " +
            std::to_string(missing) + " were made by nobody");
    else if (missing == 0 && row.first == 'W' && amount != stored.amount)
      Fault(NameOf(row) + ": the amount is " + std::to_string(stored.amount) + " instead of " +
            std::to_string(amount));
  }

  void CheckTransfers() {
    std::int64_t sum = 0;
    for (const auto& [row, stored] : stored_)
      if (row.first == 'W' && stored.group == kTransfers) sum += stored.amount;
    if (sum != 0) Fault("the rows of the transfers add up to " + std::to_string(sum));
  }

  const std::vector<Transaction>& all_;
  std::map<std::int64_t, const Transaction*> tokens_;
  std::map<RowId, Stored> stored_;
  std::map<RowId, std::map<std::int64_t, Writer>> writers_;      ///< by version
  std::map<RowId, std::map<std::int64_t, std::int64_t>> known_;  ///< marks by version
  std::map<RowId, const Transaction*> deleted_;
  std::map<int, std::vector<std::int64_t>> bulks_;  ///< the amounts of bulk changes, by group
  /// Versions that transactions were to write of which nothing shows whether they are in the file.
  std::map<RowId, std::set<std::int64_t>> open_;
  test::Faults faults_;
  int faultCount_ = 0;
};

}  // namespace

std::string Check(const std::string& path, const std::vector<Transaction>& transactions) {
  return Replay(path, transactions).Run();
}

}  // namespace walk
