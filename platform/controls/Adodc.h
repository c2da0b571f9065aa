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
  /// Lets go of its file when the form is unloaded.
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

  /// Runs the record source and stands on its first row. What fails is told to the user and leaves the
  /// control empty. A sort that the record source does not have ends; otherwise it stays.
  void Refresh();
  /// The same with the query that it runs already, also where RecordSource has been changed since.
  void Requery();
  /// Lets go of recordset and connection.
  void Close();
  /// Calls `work` after each Refresh, Requery, Close and failure, for as long as `owner` lives.
  void AddListener(const QObject& owner, std::function<void()> work);

  /// Null before the first Refresh and after a failure.
  const std::shared_ptr<ado::Recordset>& Recordset() const { return recordset_; }
  bool HasRows() const { return RecordCount() > 0; }
  /// 0 where there is no recordset. Costs nothing: the keys are there.
  std::int64_t RecordCount() const;
  /// The query whose rows the recordset has, with the order that has been chosen.
  const std::string& Query() const { return query_; }

  /// From the next Refresh on the rows come by this column, whatever order the record source asks for. Lives
  /// as long as the control.
  void SortBy(const store::FieldInfo& field, bool ascending);
  void ClearSort() { sort_.reset(); }
  /// Whether its rows would be the same ones in another order: not with TOP, DISTINCT or groups.
  bool CanSort() const;
  bool Sorted() const { return sort_.has_value(); }
  bool SortedBy(const store::FieldInfo& field) const;
  bool SortsAscending() const { return sort_ && sort_->ascending; }

  /// What a reader of its rows met: the control stands empty, and the user is told unless onError says no.
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
  /// True where the connection was open already.
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
