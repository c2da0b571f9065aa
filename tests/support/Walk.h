// A random walk of several processes on one data directory: edits, bulk changes, transactions with waits,
// groups, postings and compactions, with kills, and a check that what was acknowledged is what the file
// holds.
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
  /// Processes that are killed at some moment, each replaced by a new one.
  int kills = 8;
  /// Files are also opened by relative paths and through symbolic links.
  bool otherPaths = true;
  /// Statements in transactions also change so many rows that they hold a table.
  bool wholeTables = true;
};

struct Outcome {
  std::string faults;        ///< a line for each; empty where all is well
  std::int64_t changes = 0;  ///< changes of a row that were acknowledged
  std::int64_t refused = 0;  ///< transactions and edits that ended without a change
  std::int64_t inDoubt = 0;  ///< those of which a kill left open whether they are in the file
  std::string kinds;         ///< how often each kind of work was acknowledged
};

/// Makes the data directory with a fleet and the rows that are walked on. Opens files: call it in a process
/// of its own.
void Make(const std::string& directory);

/// Walks, then checks the file. The calling process opens no data file.
Outcome Go(const std::string& directory, const Options& options);

}  // namespace walk
