#include "platform/store/Connection.h"

#include <unistd.h>

#include <array>

#include "platform/store/ConnectionImpl.h"
#include "platform/store/Engine.h"
#include "platform/store/QueryPlan.h"

namespace store {
namespace {

struct Identity {
  std::string computer;
  std::string user = "admin";
};

Identity& Own() {
  static Identity identity = [] {
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return Identity{name.data(), "admin"};
  }();
  return identity;
}

}  // namespace

void SetIdentity(const std::string& computer, const std::string& user) { Own() = {computer, user}; }
const std::string& IdentityComputer() { return Own().computer; }
const std::string& IdentityUser() { return Own().user; }

std::shared_ptr<Connection> Connection::Open(const OpenRequest& request) {
  return Engine::Of(request.path).Open(request);
}

void Connection::Create(const std::string& path) { Engine::ForNewFiles().Create(path); }

Connection::Connection(std::unique_ptr<Session> session, std::unique_ptr<store::Holds> holds,
                       OpenRequest request)
    : impl_(std::make_unique<Impl>(std::move(session), std::move(holds), std::move(request))) {}

Connection::~Connection() = default;

const std::string& Connection::Path() const { return impl_->Request().path; }
bool Connection::ReadOnly() const { return impl_->Request().readOnly; }
Holds& Connection::Holds() { return impl_->Holds(); }

void Connection::SetPatience(int milliseconds) {
  impl_->SetPatience(std::chrono::milliseconds(milliseconds));
}

void Connection::StartReading() { impl_->StartReading(); }
void Connection::EndReading() { impl_->EndReading(); }

Reading::~Reading() {
  try {
    connection_->EndReading();
  } catch (const StoreError&) {
    // A reading has nothing to lose; what is wrong with the file shows at its next use.
  }
}

std::shared_ptr<const QueryPlan> Connection::Plan(std::string_view sql, std::vector<rt::Value>* parameters) {
  Normalized statement = Normalize(sql);
  auto plan = impl_->Plan(statement);
  *parameters = std::move(statement.parameters);
  return plan;
}

std::int64_t Connection::Execute(std::string_view sql) {
  std::vector<rt::Value> parameters;
  const auto plan = Plan(sql, &parameters);
  const Translation& t = plan->translation;
  switch (t.kind) {
    case StatementKind::Select:
      throw StoreError(kSelectNotExecuted, "A SELECT cannot be executed; it opens a recordset.");
    case StatementKind::Insert:
      // An INSERT … SELECT reads tables that the translation does not name.
      impl_->BeforeReadOfAll();
      impl_->CheckNumbersLeft(*plan, parameters);
      return impl_->ExecuteInsert(*plan, parameters);
    case StatementKind::Update:
    case StatementKind::Delete:
      return impl_->ExecuteBulk(*plan, parameters);
    case StatementKind::AddColumn:
      AddColumn(t.target, t.column);
      return 0;
    case StatementKind::DropColumn:
      DropColumn(t.target, t.column.name);
      return 0;
    case StatementKind::CreateTable: {
      TableInfo table;
      table.name = t.target;
      table.columns = t.newColumns;
      if (!t.index.columns.empty()) table.indexes.push_back(t.index);
      CreateTable(table);
      return 0;
    }
    case StatementKind::DropTable:
      DropTable(t.target);
      return 0;
    case StatementKind::CreateIndex:
      CreateIndex(t.target, t.index);
      return 0;
    case StatementKind::DropIndex:
      DropIndex(t.target, t.index.name);
      return 0;
  }
  return 0;
}

void Connection::BeginTrans() { impl_->Begin(); }
void Connection::CommitTrans(Commit how) { impl_->Commit(how); }
void Connection::RollbackTrans() { impl_->Rollback(); }
int Connection::TransactionDepth() const { return impl_->Depth(); }
void Connection::FinishGroup() { impl_->FinishGroup(); }
void Connection::AbandonGroup() { impl_->AbandonGroup(); }
void Connection::EnterGroup() { impl_->EnterGroup(); }
std::uint64_t Connection::Glance() const { return impl_->Glance(); }

std::shared_ptr<const Schema> Connection::Tables() { return impl_->TablesNow(); }

std::vector<std::string> Connection::CheckIntegrity() { return impl_->Check(); }

}  // namespace store
