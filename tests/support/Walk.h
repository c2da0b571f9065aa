// A random walk of several processes on one data directory: edits, bulk changes, transactions with waits,
// groups, postings and compactions, with kills. Afterwards a check compares the acknowledged changes with the
// file.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace walk {

struct Options {
  unsigned seed = 1;
  int workers = 6;
  std::chrono::milliseconds time{8000};
  /// The number of processes that are killed at some moment; a new one replaces each.
  int kills = 8;
  /// Whether some processes open the files by relative paths and through symbolic links.
  bool otherPaths = true;
  /// Whether statements in transactions also change so many rows that they hold a table.
  bool wholeTables = true;
};

struct Outcome {
  std::string faults;        ///< one on each line; empty if all is well
  std::int64_t changes = 0;  ///< acknowledged changes of a row
  std::int64_t refused = 0;  ///< transactions and edits that ended without a change
  std::int64_t inDoubt = 0;  ///< transactions that a kill left in doubt
  std::string kinds;         ///< the number of acknowledgments for each kind of work
};

/// Creates the data directory with a fleet and the rows of the walk. Opens files: call it in a process of its
/// own.
void Make(const std::string& directory);

/// Walks, then checks the file. The calling process opens no data file.
Outcome Go(const std::string& directory, const Options& options);

}  // namespace walk
