#include "platform/store/QueryScan.h"

#include <string>
#include <utility>

#include "platform/store/ConnectionImpl.h"
#include "platform/store/QueryPlan.h"
#include "platform/store/StoreError.h"

namespace store {

rt::Value QueriedRow::Value(int column) const {
  return row_.Decode(column, types_[static_cast<std::size_t>(column)]);
}

bool ReadQuery(const std::shared_ptr<Connection>& connection, std::string_view sql, Ties ties,
               const std::function<bool(const QueriedRow&)>& look) {
  std::vector<rt::Value> parameters;
  const auto plan = connection->Plan(sql, &parameters);
  if (plan->translation.kind != StatementKind::Select)
    throw StoreError(kSelectNotExecuted, "Only a SELECT gives rows: " + std::string(sql));
  Connection::Impl& impl = connection->Internals();
  const Statements& texts = impl.Texts();
  const std::string statement = !plan->keyed           ? plan->whole
                                : ties == Ties::ByKeys ? texts.RowsInOrder(plan->translation)
                                                       : texts.RowsInAnyOrder(plan->translation);
  const int keys = plan->keyed ? static_cast<int>(plan->translation.tables.size()) : 0;
  Question use(impl, plan->translation, statement);
  use.BindAll(parameters);
  const int fields = static_cast<int>(plan->fields.size());
  RawRow row;
  while (use.Step()) {
    use.Read(row, keys, fields);
    const std::int64_t key = keys > 0 ? use.Int64(0) : 0;
    if (!look(QueriedRow(row, key, plan->types))) return false;
  }
  return true;
}

bool ReadFromCopy(const std::shared_ptr<Connection>& connection, const std::function<bool()>& goOn) {
  return connection->Internals().ReadCopy(goOn);
}

ReadingEnd::ReadingEnd(std::shared_ptr<Connection> connection, std::function<bool()> over)
    : connection_(std::move(connection)) {
  connection_->Internals().SetEnd(std::move(over));
}

ReadingEnd::~ReadingEnd() { connection_->Internals().SetEnd(nullptr); }

}  // namespace store
