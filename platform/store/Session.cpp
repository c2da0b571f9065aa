#include "platform/store/Session.h"

#include "platform/store/Dialect.h"
#include "platform/store/QueryPlan.h"

namespace store {
namespace {

constexpr std::chrono::milliseconds kBetweenChecks{200};
constexpr std::size_t kMostPlans = 512;

}  // namespace

const std::shared_ptr<const Schema>& Session::Tables(bool checkNow) {
  KnownTables& known = Known();
  const auto now = std::chrono::steady_clock::now();
  if (!checkNow && known.version >= 0 && now - known.checked < kBetweenChecks) return known.schema;
  known.checked = now;
  const std::int64_t version = TablesVersion();
  if (version != known.version) {
    Schema schema{ReadTables()};
    NumberTables(schema.tables);
    known.schema = std::make_shared<const Schema>(std::move(schema));
    known.version = version;
    known.plans.clear();
  }
  return known.schema;
}

void Session::ForgetTables() { Known().version = -1; }

std::shared_ptr<const QueryPlan> Session::Plan(const Normalized& statement) {
  Tables();
  auto& plans = Known().plans;
  const auto found = plans.find(statement.key);
  if (found != plans.end()) return found->second;
  if (plans.size() >= kMostPlans) plans.clear();
  const auto schema = Tables(true);
  auto plan = MakePlan(Translate(statement, *schema, Spelled()), schema, Texts());
  plans[statement.key] = plan;
  return plan;
}

}  // namespace store
