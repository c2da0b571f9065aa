#include "platform/store/FileTransaction.h"

#include "platform/store/Numbers.h"
#include "platform/store/RowList.h"

namespace store {

void FileTransaction::StartLooking() {
  session_.StartReading();
  looking_ = true;
}

void FileTransaction::EndLooking() {
  if (!looking_) return;
  looking_ = false;
  session_.EndReading();
}

void FileTransaction::NoteTablesChanged() {
  session_.ForgetTables();
  tablesChanged_ = true;
}

void FileTransaction::Begin() {
  session_.Begin();
  on_ = true;
  try {
    holds_.Renew();
    if (group_.On()) group_.Started();
    if (log_.Depth() > 0 || group_.On()) session_.SetMark();  // see TakeBack
    const std::int64_t version = session_.Version();
    if (version != version_) {
      version_ = version;
      ++epoch_;
      caches_.ForgetClean();
    }
    log_.Make(Maker());
  } catch (...) {
    Rollback();
    throw;
  }
}

void FileTransaction::Commit() {
  try {
    log_.Make(Maker());
    caches_.Store(session_, GroupCaches::Rows::All);
    session_.Commit();
  } catch (...) {
    Rollback();
    throw;
  }
  on_ = false;
  caches_.Stored(GroupCaches::Rows::All);
}

void FileTransaction::Rollback() {
  session_.Rollback();
  on_ = false;
  if (tablesChanged_) session_.ForgetTables();
  log_.Unmake();
  // What was read in it may have been written in it.
  caches_.ForgetClean();
  ++epoch_;
}

// The numbers that are given to new records here must not be given to others before these are stored. So the
// file is not let go of before they are in it: whoever came in between would get them again.
void FileTransaction::TakeBack() {
  if (log_.Reserved().empty()) return Rollback();
  try {
    session_.GoToMark();
    for (const auto& [table, id] : log_.Reserved()) session_.KeepNumber(table, id);
    session_.Commit();
  } catch (...) {
    Rollback();
    throw;
  }
  Rollback();
}

Written FileTransaction::Make(const Change& change) {
  try {
    if (!change.keepsNumber) return session_.Write(*change.sql, change.values);
    session_.KeepNumber(*change.sql, KeyOf(change.values.front()));
    return {};
  } catch (...) {
    // A full disk makes the database give up the whole transaction; its writes are still in the log.
    if (!session_.InTransaction()) Rollback();
    throw;
  }
}

std::int64_t FileTransaction::MakeTogether(std::span<const Change> changes) {
  RowList rows;
  for (const Change& change : changes) rows.Add(KeyOf(change.values.back()), change.values);
  try {
    return session_.UpdateMany(*changes.front().update, rows);
  } catch (...) {
    if (!session_.InTransaction()) Rollback();
    throw;
  }
}

void FileTransaction::CommitSettled() {
  try {
    if (!on_) {
      session_.Begin();
      on_ = true;
      holds_.Renew();
    }
    log_.MakeSettled(Maker());
    caches_.Store(session_, GroupCaches::Rows::Committed);
    session_.Commit();
  } catch (...) {
    Rollback();
    throw;
  }
  on_ = false;
  caches_.Stored(GroupCaches::Rows::Committed);
  log_.ForgetSettled();
}

}  // namespace store
