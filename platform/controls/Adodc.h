// The data control behind lists: one query on a connection of its own, for as long as its form lives.
#pragma once

#include <QObject>
#include <QPointer>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/Ado.h"

namespace ui {

class Form;

class Adodc : public QObject {
 public:
  explicit Adodc(const char* name = "");
  /// Releases its file when the form is unloaded.
  Adodc(Form& form, const char* name);
  ~Adodc() override;
  Adodc(const Adodc&) = delete;
  Adodc& operator=(const Adodc&) = delete;

  long CacheSize = 50;  ///< rows that a list should read at a time, at least
  int LockType = ado::adLockOptimistic;
  int CursorType = ado::adOpenKeyset;
  int CommandTimeout = 30;       ///< seconds
  int Mode = 16;                 ///< 16 shares the file with everybody, 12 with nobody
  std::string ConnectionString;  ///< a changed one opens another connection at the next Refresh
  std::string RecordSource;      ///< a SELECT, or a table's name

  /// Asked before an error is shown, with the provider's number; setting `cancelDisplay` keeps it from the
  /// user.
  std::function<void(int number, const std::string& text, bool& cancelDisplay)> onError;

  /// Called when the data file is missing, with the connection string that did not find it. It returns the
  /// string to try next. Without it a missing file is an error like any other.
  std::function<std::string(const std::string& connectionString)> onMissingFile;

  /// Runs the record source and goes to its first row. Shows an error to the user and is empty afterwards. A
  /// sort by a column that the record source does not have ends; any other sort stays.
  void Refresh();
  /// Runs the present query again, even if RecordSource has changed since.
  void Requery();
  /// Releases the recordset and the connection.
  void Close();
  /// Calls `work` after each Refresh, Requery, Close and failure, for as long as `owner` lives.
  void AddListener(const QObject& owner, std::function<void()> work);

  /// Null before the first Refresh and after a failure.
  const std::shared_ptr<ado::Recordset>& Recordset() const { return recordset_; }
  bool HasRows() const { return RecordCount() > 0; }
  /// 0 without a recordset. Costs nothing: the keys have been read already.
  std::int64_t RecordCount() const;
  /// The query of the recordset, with the order that the user chose.
  const std::string& Query() const { return query_; }

  /// Sorts the rows by this column from the next Refresh on, whatever order the record source asks for. The
  /// sort lives as long as the control.
  void SortBy(const store::FieldInfo& field, bool ascending);
  void ClearSort() { sort_.reset(); }
  /// Whether another order leaves the rows the same: not with TOP, DISTINCT or groups.
  bool CanSort() const;
  bool Sorted() const { return sort_.has_value(); }
  bool SortedBy(const store::FieldInfo& field) const;
  bool SortsAscending() const { return sort_ && sort_->ascending; }

  /// A reader of the rows reports its error here: the control becomes empty and shows the error, unless
  /// onError cancels that.
  void Fail(int number, const std::string& text);

 private:
  struct Sort {
    std::string column;
    bool ascending = true;
  };
  struct Listener {
    QPointer<const QObject> owner;
    std::function<void()> work;
  };
  std::string WantedQuery() const;
  /// True if the connection was open already.
  bool OpenConnection();
  void OpenRecordset();
  void Try(const std::function<void()>& work);
  void TellListeners();

  std::shared_ptr<ado::Connection> connection_;
  std::string openedWith_;
  std::shared_ptr<ado::Recordset> recordset_;
  std::string query_;
  std::optional<Sort> sort_;
  std::vector<Listener> listeners_;
};

/// Sets up a data control for a grid: cache size, lock type, keyset cursor, time-out 15, the connection
/// string, mode 16 and the record source. Nothing is read before Refresh.
void AdoBindDataControl(Adodc& control, const std::string& connectionString, const std::string& recordSource,
                        int lockType, long cacheSize);

}  // namespace ui
