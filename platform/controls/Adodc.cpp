#include "platform/controls/Adodc.h"

#include <utility>

#include "platform/controls/Application.h"
#include "platform/controls/Form.h"
#include "platform/screen/Screen.h"
#include "platform/store/QueryClauses.h"

namespace ui {
namespace {

constexpr int kShareExclusive = 12;
constexpr int kShareDenyNone = 16;

std::string WithMode(std::string connection, int mode) {
  if (!connection.empty() && connection.back() != ';') connection += ';';
  if (mode == kShareExclusive) connection += "Mode=Share Exclusive;";
  if (mode == kShareDenyNone) connection += "Mode=Share Deny None;";
  return connection;
}

}  // namespace

Adodc::Adodc(const char* name) { setObjectName(QString::fromUtf8(name)); }

Adodc::Adodc(Form& form, const char* name) : Adodc(name) {
  form.AtUnload([this] { Close(); });
}

Adodc::~Adodc() = default;

void Adodc::Refresh() {
  Try([this] {
    recordset_.reset();
    query_.clear();
    if (ConnectionString.empty() || RecordSource.empty()) return;
    const bool reused = OpenConnection();
    try {
      OpenRecordset();
      return;
    } catch (const rt::Error&) {
      if (!reused && !sort_) throw;
    }
    // The file may have gone since the connection was opened.
    if (reused) {
      connection_.reset();
      OpenConnection();
    }
    try {
      OpenRecordset();
    } catch (const rt::Error&) {
      if (!sort_) throw;
      // Most likely the new record source has no such column.
      sort_.reset();
      OpenRecordset();
    }
  });
}

void Adodc::Requery() {
  if (!recordset_) return Refresh();
  Try([this] { recordset_->Requery(); });
}

void Adodc::Try(const std::function<void()>& work) {
  try {
    work();
  } catch (const rt::Error& error) {
    Fail(error.Number(), error.what());
    return;
  }
  TellListeners();
}

bool Adodc::OpenConnection() {
  for (;;) {
    const std::string wanted = WithMode(ConnectionString, Mode);
    if (connection_ && connection_->IsOpen() && openedWith_ == wanted) return true;
    connection_.reset();
    auto connection = std::make_shared<ado::Connection>();
    connection->CommandTimeout = CommandTimeout;
    try {
      connection->Open(wanted);
    } catch (const ado::Error& error) {
      if (error.Native() != ado::kNativeFileNotFound || !onMissingFile) throw;
      ConnectionString = onMissingFile(ConnectionString);
      continue;
    }
    connection_ = std::move(connection);
    openedWith_ = wanted;
    return false;
  }
}

void Adodc::OpenRecordset() {
  std::string query = WantedQuery();
  auto recordset = std::make_shared<ado::Recordset>();
  recordset->Open(query, connection_, CursorType, LockType);
  recordset_ = std::move(recordset);
  query_ = std::move(query);
}

std::string Adodc::WantedQuery() const {
  if (!sort_) return RecordSource;
  return store::QueryClauses(RecordSource).WithOrder(sort_->column + (sort_->ascending ? "" : " DESC"));
}

void Adodc::Close() {
  recordset_.reset();
  query_.clear();
  connection_.reset();
  TellListeners();
}

std::int64_t Adodc::RecordCount() const {
  return recordset_ && recordset_->IsOpen() && recordset_->ActiveConnection()->IsOpen()
             ? recordset_->RecordCount()
             : 0;
}

void Adodc::SortBy(const store::FieldInfo& field, bool ascending) {
  sort_ = Sort{store::ColumnReference(field), ascending};
}

bool Adodc::CanSort() const { return !query_.empty() && !store::QueryClauses(query_).Limited(); }

bool Adodc::SortedBy(const store::FieldInfo& field) const {
  return sort_ && sort_->column == store::ColumnReference(field);
}

void Adodc::Fail(int number, const std::string& text) {
  recordset_.reset();
  query_.clear();
  TellListeners();
  bool cancelDisplay = false;
  if (onError) Guard([&] { onError(number, text, cancelDisplay); });
  if (!cancelDisplay) screen::MessageBox(text, screen::Icon::Critical);
}

void Adodc::AddListener(const QObject& owner, std::function<void()> work) {
  listeners_.push_back({&owner, std::move(work)});
}

void Adodc::TellListeners() {
  std::erase_if(listeners_, [](const Listener& listener) { return !listener.owner; });
  // A copy: a listener may add others.
  const auto listeners = listeners_;
  for (const auto& listener : listeners)
    if (listener.owner) listener.work();
}

void AdoBindDataControl(Adodc& control, const std::string& connectionString, const std::string& recordSource,
                        int lockType, long cacheSize) {
  control.CacheSize = cacheSize;
  control.LockType = lockType;
  control.CursorType = ado::adOpenKeyset;
  control.CommandTimeout = 15;
  control.ConnectionString = connectionString;
  control.Mode = 16;
  control.RecordSource = recordSource;
}

}  // namespace ui
