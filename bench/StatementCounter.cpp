#include "bench/StatementCounter.h"

#include <cstdio>
#include <functional>

namespace bench {

std::map<std::string, std::int64_t> StatementCounter::texts_;

StatementCounter::StatementCounter() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(Attach)); }

StatementCounter::~StatementCounter() { sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(Attach)); }

std::int64_t StatementCounter::Count() const {
  std::int64_t count = 0;
  for (const auto& [text, times] : texts_) count += times;
  return count;
}

void StatementCounter::TellMostFrequent(std::size_t most) const {
  std::multimap<std::int64_t, std::string, std::greater<>> byCount;
  for (const auto& [text, times] : texts_) byCount.emplace(times, text);
  for (const auto& [times, text] : byCount) {
    if (most-- == 0) return;
    std::fprintf(stderr, "    %9lld  %s\n", static_cast<long long>(times), text.substr(0, 100).c_str());
  }
}

int StatementCounter::Attach(sqlite3* db, char**, const sqlite3_api_routines*) {
  return sqlite3_trace_v2(db, SQLITE_TRACE_STMT, Note, nullptr);
}

int StatementCounter::Note(unsigned, void*, void* statement, void*) {
  if (const char* text = sqlite3_sql(static_cast<sqlite3_stmt*>(statement))) ++texts_[text];
  return 0;
}

}  // namespace bench
