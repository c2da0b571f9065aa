// Runs a program on a connection and on the model, and compares after each step.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "store/ModelDatabase.h"
#include "store/ModelProgram.h"

namespace model {

/// Makes the file on which programs run: Sums and Lines, each with ID, Tag, A, B, N, an index Key on A and B
/// (unique for Sums) and an index "By N".
inline void MakeFile(const std::string& path) {
  using store::ColumnType;
  store::Connection::Create(path);
  const auto file = store::Connection::Open({path});
  for (const char* name : {"Sums", "Lines"}) {
    store::TableInfo table;
    table.name = name;
    table.columns = {{"ID", ColumnType::Counter},
                     {"Tag", ColumnType::Long},
                     {"A", ColumnType::Long},
                     {"B", ColumnType::Text, 10},
                     {"N", ColumnType::Long}};
    table.indexes = {{"Key", {"A", "B"}, false, table.name == "Sums", false},
                     {"By N", {"N"}, false, false, false}};
    file->CreateTable(table);
  }
}

struct Fault {
  std::string text;
};

/// How often something happened in the programs; a check whose case never came would prove nothing.
struct Tally {
  std::int64_t programs = 0;
  std::int64_t rowsRead = 0;
  std::int64_t doubledKeys = 0;     ///< writes that were refused for a duplicate key
  std::int64_t abandoned = 0;       ///< groups that AbandonGroup ended and that had work to undo
  std::int64_t abandonedWhole = 0;  ///< the groups of these that it undid completely
  std::int64_t keptBack = 0;        ///< reads by another connection during work that it must not see
};

class Run {
 public:
  Run(const std::string& path, Tally& tally)
      : path_(path),
        tally_(tally),
        file_(store::Connection::Open({path})),
        other_(store::Connection::Open({path})) {
    for (int i = 0; i < kCursors; ++i) Open(i);
    onDisk_ = {model_.ReadState()};
  }

  /// Runs the program; empty, or the first difference. Identifies rows by their Tag, because the store may
  /// reuse the numbers of a rollback.
  std::string Go(const Program& program) {
    std::size_t at = 0;
    try {
      for (; at < program.size(); ++at) {
        Do(program[at]);
        // Not after every step: a read would repair what a later step should find wrong.
        if (program[at].n % 2 == 1) CheckRow(program[at].cursor);
      }
      Close();
    } catch (const Fault& fault) {
      return Where(program, at) + fault.text;
    } catch (const store::StoreError& error) {
      return Where(program, at) + "error " + std::to_string(error.Number()) + " " + error.what();
    }
    return {};
  }

 private:
  static constexpr int kCursors = 4;
  static constexpr int kKeyset = 3;
  enum Field { kId, kTag, kA, kB, kN };

  struct Place {
    std::unique_ptr<store::Cursor> cursor;
    std::string index;
    std::optional<int> tag;           ///< of the current row; empty if there is none or it is unknown
    std::optional<int> lastModified;  ///< the tag of the row that LastModified marks
    std::int64_t orderOf = 0;         ///< the number of writes when its order was read
    std::vector<int> keyset;          ///< of the keyset: the tags of its rows
  };

  static std::string Where(const Program& program, std::size_t at) {
    if (at == program.size()) return "at the end: ";
    return "step " + std::to_string(at + 1) + " (" + NameOf(program[at].act) + "): ";
  }
  static std::string Table(int cursor) { return cursor == 1 ? "Lines" : "Sums"; }
  static std::string TextOfB(int b) {
    static constexpr std::array kTexts = {"Null", "'x'", "'X'", "'yy'"};
    return kTexts[static_cast<std::size_t>(b)];
  }
  static rt::Value ValueOfA(int a) { return a == 0 ? rt::Value() : rt::Value(a); }
  static rt::Value ValueOfB(int b) {
    const std::string text = TextOfB(b);
    return b == 0 ? rt::Value() : rt::Value(text.substr(1, text.size() - 2));
  }
  static std::string SqlOfA(int a) { return a == 0 ? "Null" : std::to_string(a); }
  static std::string Text(const rt::Value& value) { return value.IsNull() ? "Null" : value.AsText(); }

  // --- what is compared

  template <class Work>
  static int ErrorOf(Work work) {
    try {
      work();
    } catch (const store::StoreError& error) {
      return error.Number();
    }
    return 0;
  }
  template <class Left, class Right>
  static void Same(const Left& found, const Right& wanted, const std::string& what) {
    if (found == wanted) return;
    if constexpr (std::is_arithmetic_v<Left>)
      throw Fault{what + ": " + std::to_string(found) + " instead of " + std::to_string(wanted)};
    else
      throw Fault{what + ": " + Shown(found) + " instead of " + Shown(wanted)};
  }
  static void Need(bool good, const std::string& otherwise) {
    if (!good) throw Fault{otherwise};
  }

  std::optional<Row> RowOf(int cursor, int tag) {
    const Rows rows =
        model_.Read("SELECT Tag, A, B, N FROM " + Table(cursor) + " WHERE Tag = " + std::to_string(tag));
    return rows.empty() ? std::nullopt : std::optional(rows.front());
  }

  Row ReadRow(Place& place) {
    ++tally_.rowsRead;
    Row row;
    for (const int field : {kTag, kA, kB, kN}) row.push_back(Text(place.cursor->Get(field)));
    return row;
  }

  /// Reads the current row: it must be as in the model, or an error if it was deleted.
  void CheckRow(int cursor) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    if (!place.tag) return;
    const auto wanted = RowOf(cursor, *place.tag);
    Row found;
    const int error = ErrorOf([&] { found = ReadRow(place); });
    if (error != 0) {
      Need(!wanted,
           "error " + std::to_string(error) + " instead of the row " + Shown(wanted.value_or(Row())));
      Need(error == store::kRecordDeleted || error == store::kNoCurrentRecord,
           "error " + std::to_string(error) + " for a row that is gone");
      place.tag.reset();
      return;
    }
    const int tag = std::stoi(found[0]);
    if (!wanted) {
      // Another row may have got the number of a row that was rolled back.
      place.tag = tag;
      const auto again = RowOf(cursor, tag);
      Need(again.has_value(), "the row " + Shown(found) + " is not there");
      Same(found, *again, "row");
    } else {
      Same(found, *wanted, "row");
    }
    LearnNumber(cursor, tag);
  }

  /// A row keeps its number as long as it exists.
  void LearnNumber(int cursor, int tag) {
    const rt::Value id = places_[static_cast<std::size_t>(cursor)].cursor->Get(kId);
    Need(!id.IsNull() && id.AsLong() > 0, "row " + std::to_string(tag) + " shows no number");
    auto& numbers = numbers_[Table(cursor)];
    const auto known = numbers.emplace(tag, id.AsLong()).first;
    Same(id.AsLong(), known->second, "number of row " + std::to_string(tag));
  }

  Rows Ask(const std::shared_ptr<store::Connection>& file, const std::string& sql) {
    const auto cursor = store::Cursor::OpenQuery(file, sql, store::Locking::ReadOnly);
    Rows rows;
    for (; !cursor->AtEnd(); cursor->MoveNext()) {
      Row& row = rows.emplace_back();
      for (std::size_t i = 0; i < cursor->Fields().size(); ++i)
        row.push_back(Text(cursor->Get(static_cast<int>(i))));
    }
    return rows;
  }
  State AskState(const std::shared_ptr<store::Connection>& file) {
    return {Ask(file, "SELECT [Tag], [A], [B], [N] FROM [Sums] ORDER BY [Tag]"),
            Ask(file, "SELECT [Tag], [A], [B], [N] FROM [Lines] ORDER BY [Tag]")};
  }
  void Compare(const std::string& sql) { Same(Ask(file_, sql), model_.Read(sql), sql); }

  // --- transactions

  int Depth() const { return static_cast<int>(depth_); }
  /// A write has ended outside a transaction, or the outermost transaction was committed.
  void Whole(bool withGroup) {
    if (withGroup)
      onDisk_.push_back(model_.ReadState());
    else
      onDisk_ = {model_.ReadState()};
  }
  void AfterWrite() {
    ++writes_;
    if (Depth() == 0) Whole(inGroup_);
  }

  void Begin() {
    if (Depth() == 3) return;
    file_->BeginTrans();
    model_.Must("SAVEPOINT t" + std::to_string(++depth_));
  }
  void Commit(store::Commit how) {
    const int error = ErrorOf([&] { file_->CommitTrans(how); });
    Same(error, Depth() == 0 ? store::kTransactionMissing : 0, "error of the commit");
    if (error != 0) return;
    model_.Must("RELEASE t" + std::to_string(depth_--));
    if (Depth() > 0) return;
    if (how == store::Commit::WithGroup) inGroup_ = true;
    Whole(how == store::Commit::WithGroup);
  }
  void Rollback() {
    const int error = ErrorOf([&] { file_->RollbackTrans(); });
    Same(error, Depth() == 0 ? store::kTransactionMissing : 0, "error of the rollback");
    if (error == 0) TakeBack();
  }
  void TakeBack() {
    model_.Must("ROLLBACK TO t" + std::to_string(depth_));
    model_.Must("RELEASE t" + std::to_string(depth_--));
    ++writes_;
  }
  void FinishGroup() {
    file_->FinishGroup();
    if (Depth() > 0) return;
    inGroup_ = false;
    Whole(false);
  }
  /// Undoes what is not on the disk yet. After some time, a group may have written some of its transactions,
  /// always the earlier ones first.
  void AbandonGroup() {
    file_->AbandonGroup();
    if (Depth() > 0 || !inGroup_) return;
    inGroup_ = false;
    const State left = AskState(file_);
    NeedOnDisk(left, "after AbandonGroup");
    if (onDisk_.size() > 1 || left != model_.ReadState()) {
      ++tally_.abandoned;
      if (left == onDisk_.front()) ++tally_.abandonedWhole;
    }
    model_.Become(left);
    ++writes_;
    onDisk_ = {left};
  }
  void Wait() {
    store::YieldFiles();
    if (onDisk_.size() > 1) onDisk_ = {onDisk_.back()};
  }
  /// The state must come from whole transactions, and must not be older than a state that was seen on the
  /// disk.
  void NeedOnDisk(const State& state, const std::string& when) {
    const auto found = std::find(onDisk_.begin(), onDisk_.end(), state);
    if (found == onDisk_.end())
      throw Fault{when + " Sums has " + Shown(state.sums) + "and Lines " + Shown(state.lines) +
                  "instead of " + Shown(onDisk_.back().sums) + "and " + Shown(onDisk_.back().lines)};
    if (when != "after AbandonGroup") onDisk_.erase(onDisk_.begin(), found);
  }
  void OtherReads() {
    const State seen = AskState(other_);
    if (seen != model_.ReadState()) ++tally_.keptBack;
    NeedOnDisk(seen, "for another connection");
  }

  // --- statements

  int Write(const std::string& sql) {
    std::int64_t changed = 0;
    const int error = ErrorOf([&] { changed = file_->Execute(sql); });
    const int wanted = model_.Try(sql);
    Same(error, wanted, "error of " + sql);
    if (error == 0)
      Same(changed, model_.Changed(), "rows changed by " + sql);
    else
      ++tally_.doubledKeys;
    AfterWrite();
    return error;
  }
  static std::string Condition(const Step& s) {
    switch (s.how % 6) {
      case 0:
        return "[A] = " + std::to_string(std::max(1, s.a));
      case 1:
        return "[A] IS NULL";
      case 2:
        return "[B] = 'X'";
      case 3:
        return "[N] > " + std::to_string(s.n);
      case 4:
        return "[B] IS NULL OR [N] = " + std::to_string(s.n);
      default:
        return "[Tag] > 0";
    }
  }
  std::string UpdateMany(const Step& s) {
    const std::string update = "UPDATE [" + Table(s.cursor) + "] SET ";
    const std::string where = " WHERE " + Condition(s);
    switch (s.b) {
      case 0:
        return update + "[N] = [N] + 1" + where;
      case 1:
        return update + "[B] = " + TextOfB(1 + s.n % 3) + where;  // may double a key
      case 2:
        return update + "[A] = NULL, [N] = " + std::to_string(s.n) + where;
      default:
        return update + "[N] = [N] + [A]";
    }
  }
  std::string InsertOne(const Step& s) {
    return "INSERT INTO [" + Table(s.cursor) + "] ([Tag], [A], [B], [N]) VALUES (" +
           std::to_string(NewTag()) + ", " + SqlOfA(s.a) + ", " + TextOfB(s.b) + ", " + std::to_string(s.n) +
           ")";
  }
  std::string InsertMany(const Step& s) {
    const std::string base = std::to_string(manyTags_ += 10000);
    return "INSERT INTO [" + Table(s.cursor) + "] ([Tag], [A], [B], [N]) SELECT [Tag] + " + base +
           ", [A], [B], [N] FROM [" + Table(s.b % 2) + "] WHERE " + Condition(s) + " AND [Tag] < 10000";
  }
  int NewTag() { return ++lastTag_; }

  // --- cursors

  void Open(int cursor) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    place = {};
    if (cursor == kKeyset) {
      const std::string sql = "SELECT * FROM [Sums] WHERE [N] >= 0 ORDER BY [N], [Tag]";
      place.cursor = store::Cursor::OpenQuery(file_, sql, store::Locking::Pessimistic);
      for (const Row& row : model_.Read("SELECT Tag FROM Sums WHERE N >= 0 ORDER BY N, Tag"))
        place.keyset.push_back(std::stoi(row[0]));
      Same(place.cursor->Count(), static_cast<std::int64_t>(place.keyset.size()), "rows of " + sql);
      if (!place.keyset.empty()) place.tag = place.keyset.front();
    } else {
      place.cursor = store::Cursor::OpenTable(
          file_, Table(cursor), cursor == 2 ? store::Locking::Optimistic : store::Locking::Pessimistic);
      place.index = "PrimaryKey";
    }
  }
  void UseIndex(int cursor, const std::string& index) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    if (place.index != index) SetIndex(cursor, index);
  }
  void SetIndex(int cursor, const std::string& index) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    place.cursor->SetIndex(index);
    place.index = index;
    place.tag.reset();
    place.orderOf = writes_;
    Same(place.cursor->AtEnd(), RowCount(cursor) == 0, "no rows by the index " + index);
  }
  int RowCount(int cursor) { return std::stoi(model_.Read("SELECT COUNT(*) FROM " + Table(cursor))[0][0]); }

  /// The cursor must be on one of these rows.
  void StandOn(int cursor, const Rows& tags, const std::string& what) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    Same(place.cursor->NoMatch(), tags.empty(), what + " finds nothing");
    place.tag.reset();
    place.orderOf = writes_;
    if (tags.empty()) return;
    place.tag = place.cursor->Get(kTag).AsLong();
    const Row tag = {std::to_string(*place.tag)};
    Need(std::find(tags.begin(), tags.end(), tag) != tags.end(),
         what + " finds row " + tag[0] + " instead of " + Shown(tags));
    CheckRow(cursor);
  }
  void Seek(int cursor, int a, int b) {
    UseIndex(cursor, "Key");
    places_[static_cast<std::size_t>(cursor)].cursor->Seek({ValueOfA(a), ValueOfB(b)});
    StandOn(cursor, RowsWithKey(cursor, a, b), "the Seek");
  }
  Rows RowsWithKey(int cursor, int a, int b) {
    return model_.Read("SELECT Tag FROM " + Table(cursor) + " WHERE A IS " + SqlOfA(a) + " AND B IS " +
                       TextOfB(b));
  }
  void SeekPart(int cursor, int a) {
    UseIndex(cursor, "Key");
    places_[static_cast<std::size_t>(cursor)].cursor->Seek({ValueOfA(a)});
    const std::string from = " FROM " + Table(cursor) + " WHERE A IS " + SqlOfA(a);
    StandOn(cursor,
            model_.Read("SELECT Tag" + from + " AND B IS (SELECT MIN(B)" + from + ") " +
                        "AND (B IS NULL OR NOT EXISTS (SELECT 1" + from + " AND B IS NULL)) UNION " +
                        "SELECT Tag" + from + " AND B IS NULL"),
            "the Seek by a part");
  }
  void Find(int cursor, const Step& s) {
    const std::string condition = Condition(s);
    places_[static_cast<std::size_t>(cursor)].cursor->FindFirst(condition);
    Rows wanted;
    for (const Row& row : model_.Read("SELECT Tag FROM " + Table(cursor) + " WHERE " + condition)) {
      const auto& keyset = places_[kKeyset].keyset;
      if (cursor != kKeyset || std::find(keyset.begin(), keyset.end(), std::stoi(row[0])) != keyset.end())
        wanted.push_back(row);
    }
    StandOn(cursor, wanted, "FindFirst " + condition);
  }

  /// The columns of the cursor's index, which determine its order before the number does.
  static std::string OrderOf(const std::string& index) {
    return index == "Key" ? "A, B" : index == "By N" ? "N" : "";
  }
  /// Whether one row may come before another in the cursor's order.
  bool MayPrecede(int cursor, int tag, int next) {
    Need(tag != next, "the move from row " + std::to_string(tag) + " leads to the same");
    const std::string order = OrderOf(places_[static_cast<std::size_t>(cursor)].index);
    const std::string two = std::to_string(tag) + ", " + std::to_string(next);
    if (!order.empty()) {
      // The rank by the index; rows of equal rank are in the order of their numbers.
      const Rows ranks =
          model_.Read("SELECT r FROM (SELECT Tag, RANK() OVER (ORDER BY " + order + ") AS r FROM " +
                      Table(cursor) + ") WHERE Tag IN (" + two + ") ORDER BY Tag = " + std::to_string(next));
      const int first = std::stoi(ranks.at(0)[0]);
      const int second = std::stoi(ranks.at(1)[0]);
      if (first != second) return first < second;
    }
    return numbers_[Table(cursor)].at(tag) < numbers_[Table(cursor)].at(next);
  }
  /// From one end to the other: each row once, in order.
  void ReadAll(int cursor, bool forward) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    place.tag.reset();
    std::set<int> seen;
    std::optional<int> before;
    for (forward ? place.cursor->MoveFirst() : place.cursor->MoveLast();
         forward ? !place.cursor->AtEnd() : !place.cursor->AtBegin();
         forward ? place.cursor->MoveNext() : place.cursor->MovePrevious()) {
      place.tag = place.cursor->Get(kTag).AsLong();
      CheckRow(cursor);
      const int tag = *place.tag;
      Need(seen.insert(tag).second, "row " + std::to_string(tag) + " comes twice");
      if (before)
        Need(forward ? MayPrecede(cursor, *before, tag) : MayPrecede(cursor, tag, *before),
             "row " + std::to_string(tag) + " comes after " + std::to_string(*before));
      before = tag;
    }
    place.tag.reset();
    Same(static_cast<int>(seen.size()), RowCount(cursor), "rows by " + place.index);
    Same(static_cast<int>(place.cursor->Count()), RowCount(cursor), "Count");
  }
  void Move(int cursor, Act act) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    if (act == Act::MoveFirst || act == Act::MoveLast) {
      act == Act::MoveFirst ? place.cursor->MoveFirst() : place.cursor->MoveLast();
      place.orderOf = writes_;
      const bool none = act == Act::MoveFirst ? place.cursor->AtEnd() : place.cursor->AtBegin();
      Same(none, cursor == kKeyset ? place.keyset.empty() : RowCount(cursor) == 0, "no rows");
      place.tag.reset();
      if (none) return;
      if (cursor == kKeyset) {
        place.tag = act == Act::MoveFirst ? place.keyset.front() : place.keyset.back();
        return CheckRow(cursor);
      }
      place.tag = place.cursor->Get(kTag).AsLong();
      CheckRow(cursor);
      return NothingBetween(cursor, std::nullopt, place.tag, act == Act::MoveFirst);
    }
    CheckRow(cursor);
    if (!place.tag) return;
    if (cursor == kKeyset) return MoveInKeyset(act);
    // The order of an index is read as a whole; later changes may or may not be visible until the next start.
    const bool current = place.index == "PrimaryKey" || place.orderOf == writes_;
    const int from = *place.tag;
    const bool forward = act == Act::MoveNext;
    forward ? place.cursor->MoveNext() : place.cursor->MovePrevious();
    place.tag.reset();
    const bool end = forward ? place.cursor->AtEnd() : place.cursor->AtBegin();
    if (!end) {
      if (!current && ErrorOf([&] { place.cursor->Get(kTag); }) == store::kRecordDeleted) return;
      place.tag = place.cursor->Get(kTag).AsLong();
      CheckRow(cursor);
    }
    if (current) NothingBetween(cursor, from, place.tag, forward);
  }
  /// The cursor must skip no row between two rows, or between a row and an end.
  void NothingBetween(int cursor, std::optional<int> from, std::optional<int> to, bool forward) {
    if (!forward) std::swap(from, to);
    if (from && to)
      Need(MayPrecede(cursor, *from, *to), "the move from row " + std::to_string(*from) + " to " +
                                               std::to_string(*to) + " is in the wrong order");
    for (const Row& row : model_.Read("SELECT Tag FROM " + Table(cursor))) {
      const int tag = std::stoi(row[0]);
      // Rows with an unknown number have no known place.
      if (tag == from || tag == to || !numbers_[Table(cursor)].contains(tag)) continue;
      Need((from && MayPrecede(cursor, tag, *from)) || (to && MayPrecede(cursor, *to, tag)),
           "row " + row[0] + " is passed over");
    }
  }
  void MoveInKeyset(Act act) {
    Place& place = places_[kKeyset];
    const auto at = std::find(place.keyset.begin(), place.keyset.end(), *place.tag) - place.keyset.begin();
    const auto next = at + (act == Act::MoveNext ? 1 : -1);
    act == Act::MoveNext ? place.cursor->MoveNext() : place.cursor->MovePrevious();
    const bool inside = next >= 0 && next < static_cast<std::ptrdiff_t>(place.keyset.size());
    Same(act == Act::MoveNext ? place.cursor->AtEnd() : place.cursor->AtBegin(), !inside,
         "end of the keyset");
    place.tag.reset();
    if (!inside) return;
    place.tag = place.keyset[static_cast<std::size_t>(next)];
    CheckRow(kKeyset);
  }
  void GoToLast(int cursor) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    if (!place.lastModified) return;
    const int error = ErrorOf([&] { place.cursor->GoTo(place.cursor->LastModified()); });
    if (RowOf(cursor, *place.lastModified)) {
      Same(error, 0, "error of GoTo(LastModified())");
    } else if (error != 0) {
      Same(error, static_cast<int>(store::kRecordDeleted), "error of GoTo to a row that is gone");
      place.tag.reset();
      return;
    }
    place.tag = place.lastModified;
    CheckRow(cursor);
  }

  /// Stores the edit, or cancels it; true if it was stored. `sql` is the statement of the same effect.
  bool Store(Place& place, const std::string& sql) {
    const int error = ErrorOf([&] { place.cursor->Update(); });
    Same(error, model_.Try(sql), "error of the Update for " + sql);
    if (error != 0) {
      ++tally_.doubledKeys;
      place.cursor->CancelUpdate();
    }
    AfterWrite();
    return error == 0;
  }
  void Edit(int cursor, const Step& s) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    if (!place.tag) return;
    const auto wanted = RowOf(cursor, *place.tag);
    if (!wanted) {
      CheckRow(cursor);
      if (!place.tag) return;
    }
    place.cursor->Edit();
    if (s.how == 0) Wait();
    CheckRow(cursor);
    const std::string end = " WHERE Tag = " + std::to_string(*place.tag);
    const std::string update = "UPDATE " + Table(cursor) + " SET N = " + std::to_string(s.n);
    place.cursor->Set(kN, s.n);
    if (s.how == 1) Wait();
    if (s.how == 2) return place.cursor->CancelUpdate();
    if (s.how != 3) {
      if (Store(place, update + end)) place.lastModified = place.tag;
      return;
    }
    place.cursor->Set(kB, ValueOfB(s.b));
    if (Store(place, update + ", B = " + TextOfB(s.b) + end)) place.lastModified = place.tag;
  }
  void Add(int cursor, const Step& s) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    const int tag = NewTag();
    place.cursor->AddNew();
    place.cursor->Set(kTag, tag);
    place.cursor->Set(kA, ValueOfA(s.a));
    place.cursor->Set(kB, ValueOfB(s.b));
    place.cursor->Set(kN, s.n);
    std::optional<std::int64_t> number;
    if (s.how % 3 == 1) number = place.cursor->Get(kId).AsLong();
    if (s.how == 3 || s.how == 4) Wait();
    if (s.how == 5) return place.cursor->CancelUpdate();
    if (!Store(place, "INSERT INTO " + Table(cursor) + " (Tag, A, B, N) VALUES (" + std::to_string(tag) +
                          ", " + SqlOfA(s.a) + ", " + TextOfB(s.b) + ", " + std::to_string(s.n) + ")"))
      return;
    if (number) numbers_[Table(cursor)][tag] = *number;
    place.lastModified = tag;
    if (cursor == kKeyset) place.keyset.push_back(tag);
  }
  void Accumulate(int cursor, const Step& s) {
    Seek(cursor, s.a, s.b);
    Place& place = places_[static_cast<std::size_t>(cursor)];
    Step row = s;
    row.how = 6;
    if (!place.tag) return Add(cursor, row);
    if (const rt::Value before = place.cursor->Get(kN); !before.IsNull()) row.n += before.AsLong();
    Edit(cursor, row);
  }
  void Delete(int cursor) {
    Place& place = places_[static_cast<std::size_t>(cursor)];
    CheckRow(cursor);
    if (!place.tag) return;
    place.cursor->Delete();
    model_.Must("DELETE FROM " + Table(cursor) + " WHERE Tag = " + std::to_string(*place.tag));
    std::erase(place.keyset, *place.tag);
    place.tag.reset();
    AfterWrite();
  }

  void Do(const Step& s) {
    const int cursor = s.cursor;
    const bool table = cursor != kKeyset;
    static constexpr std::array kIndexes = {"PrimaryKey", "Key", "By N"};
    switch (s.act) {
      case Act::Begin:
        return Begin();
      case Act::Commit:
        return Commit(store::Commit::Now);
      case Act::CommitWithGroup:
        return Commit(store::Commit::WithGroup);
      case Act::Rollback:
        return Rollback();
      case Act::EnterGroup:
        if (Depth() > 0) return;
        file_->EnterGroup();
        inGroup_ = true;
        return;
      case Act::FinishGroup:
        return FinishGroup();
      case Act::AbandonGroup:
        return AbandonGroup();
      case Act::Wait:
        return Wait();
      case Act::OtherReads:
        return OtherReads();
      case Act::Seek:
        return table ? Seek(cursor, s.a, s.b) : Find(cursor, s);
      case Act::SeekPart:
        return table ? SeekPart(cursor, s.a) : Find(cursor, s);
      case Act::SetIndex:
        return table ? SetIndex(cursor, kIndexes[static_cast<std::size_t>(s.how % 3)]) : Open(cursor);
      case Act::MoveFirst:
      case Act::MoveLast:
      case Act::MoveNext:
      case Act::MovePrevious:
        return Move(cursor, s.act);
      case Act::FindFirst:
        return Find(cursor, s);
      case Act::GoToLast:
        return GoToLast(cursor);
      case Act::Read:
        return CheckRow(cursor);
      case Act::Edit:
        return Edit(cursor, s);
      case Act::Add:
        return Add(cursor, s);
      case Act::Accumulate:
        return Accumulate(cursor % 3, s);
      case Act::Delete:
        return Delete(cursor);
      case Act::Reopen:
        return Open(cursor);
      case Act::UpdateMany:
        Write(UpdateMany(s));
        return;
      case Act::DeleteMany:
        Write("DELETE FROM [" + Table(cursor) + "] WHERE " + Condition(s));
        return;
      case Act::InsertOne:
        Write(InsertOne(s));
        return;
      case Act::InsertMany:
        Write(InsertMany(s));
        return;
      case Act::Query:
        return Compare("SELECT [Tag], [A], [B], [N] FROM [" + Table(cursor) + "] WHERE " + Condition(s) +
                       " ORDER BY [Tag]");
      case Act::Total:
        return Compare("SELECT [A], COUNT(*), SUM([N]) FROM [" + Table(cursor) +
                       "] GROUP BY [A] ORDER BY [A]");
      case Act::Join:
        return Compare(
            "SELECT [Sums].[Tag], [Lines].[Tag], [Sums].[N] FROM [Sums] INNER JOIN [Lines] ON "
            "[Sums].[A] = [Lines].[A] ORDER BY [Sums].[Tag], [Lines].[Tag]");
      case Act::ReadAll:
        return table ? ReadAll(cursor, s.how % 4 != 0) : Open(cursor);
      case Act::kCount:
        return;
    }
  }

  /// Closes the connection as it is and reads the file: an open transaction must be gone, and the commits of
  /// a group must be there.
  void Close() {
    while (Depth() > 0) TakeBack();
    const State wanted = model_.ReadState();
    for (Place& place : places_) place.cursor.reset();
    file_.reset();
    Same(AskState(other_) == wanted, true, "the file is what was committed");
    other_.reset();
    Database left(path_);
    const State found = left.ReadState();
    Same(found.sums, wanted.sums, "Sums in the file");
    Same(found.lines, wanted.lines, "Lines in the file");
    Same(left.Read("PRAGMA integrity_check"), Rows{{"ok"}}, "integrity");
  }

  std::string path_;
  Tally& tally_;
  std::shared_ptr<store::Connection> file_, other_;
  Database model_;
  std::array<Place, kCursors> places_;
  std::map<std::string, std::map<int, std::int64_t>> numbers_;  ///< by table and tag
  std::int64_t writes_ = 0;
  int depth_ = 0;
  int lastTag_ = 0;
  int manyTags_ = 0;
  bool inGroup_ = false;
  std::vector<State> onDisk_;  ///< the states that others may see; the last one is the committed one
};

}  // namespace model
