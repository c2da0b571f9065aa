// Counts the statements that the system sends to the engine.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace bench {

/// Counts the statements of every connection that this process opens from now on, by their texts: all that
/// the engine begins, including pragmas and those that begin and end a transaction.
class StatementCounter {
 public:
  StatementCounter();
  ~StatementCounter();
  StatementCounter(const StatementCounter&) = delete;
  StatementCounter& operator=(const StatementCounter&) = delete;

  template <class Work>
  std::int64_t During(Work work) {
    texts_.clear();
    work();
    return Count();
  }
  /// Since the beginning, or since During began.
  std::int64_t Count() const;
  /// Prints the most frequent texts.
  void TellMostFrequent(std::size_t most) const;

 private:
  static int Attach(sqlite3* db, char**, const sqlite3_api_routines*);
  static int Note(unsigned, void*, void* statement, void*);
  static std::map<std::string, std::int64_t> texts_;
};

}  // namespace bench
