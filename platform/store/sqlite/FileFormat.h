// What makes a file one of ours.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace store {

class Handle;
class StoreError;

/// In SQLite's header field "application id": "DWRT".
constexpr std::int64_t kApplicationId = 0x44575254;
/// The version of the way in which tables are laid down in the file.
constexpr std::int64_t kFormatVersion = 1;

/// The bytes that a data file begins with.
constexpr std::size_t kHeaderBytes = 100;
std::int64_t ApplicationIdIn(const std::array<unsigned char, kHeaderBytes>& header);

/// Looks at the first bytes, before anything else is done with the database: the mere reading of another
/// program's file could change it. Throws StoreError 3049 for a file that is not of this system, 3051 for one
/// that another program has switched to a write-ahead log, 3343 for damage.
void CheckHeader(Handle& handle);
/// Throws StoreError 3049 if the opened database is not of this system, 3041 if it is of a later version.
void CheckFormat(Handle& handle);
/// Throws StoreError 3049 for a name that a data file cannot have: its side file would be written over it.
void CheckName(const std::string& path);
/// The one path by which everybody knows the file: absolute and without symbolic links, so that all users
/// meet in one side file. A path that leads nowhere is returned as an absolute one.
std::string RealPath(const std::string& path);
/// Throws StoreError 3024, 3044, 3049 or 3051 for what can be seen without opening: nothing there, no such
/// directory, a directory under the file's name, a second name (hard link) of the file, an empty file.
void CheckFile(const std::string& path);

/// 3044, for an open file that was taken away.
StoreError FileIsGone(const std::string& path);

}  // namespace store
