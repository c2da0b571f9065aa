// A fleet of some size, and checks that its main file must pass whatever has happened to it. Each function
// opens the file for itself and closes it again.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/store/Connection.h"
#include "support/Apart.h"

namespace test {

/// Creates a sample fleet, always the same, with about 30 transactions for each asset and year; none is
/// posted.
void MakeFleet(const std::string& directory, int assets, int years);

/// Runs a posting in the directory; every box but "Posting is Complete." is a fault. Installs a QuietScreen.
void Post(const std::string& directory, bool clearFirst, Faults& faults);

/// The faults of a main file: damage, sums that differ from the posted rows, other users in the roster.
std::string CheckMainFile(const std::string& path, bool readOnly = false);
/// The same in a process of its own.
std::string CheckMainFileApart(const std::string& path);

/// The first value of a query, as text.
std::string AskFile(const std::string& path, const std::string& sql);
/// The number of unposted transactions whose asset is on file.
std::int64_t WaitingRows(const std::string& path);
/// The number of rows in the cost tables, and their totals.
std::string CostTotals(const std::string& path);

std::string BytesOf(const std::string& path);
void WriteBytes(const std::string& path, const std::string& bytes);

}  // namespace test
