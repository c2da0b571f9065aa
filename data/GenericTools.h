// Small operations that all forms share. They keep no state.
#pragma once

#include <string>

namespace dw {

/// Reports what is wrong with a date text, if anything is: empty though required, not a date, a year below
/// 1800.
bool ValidDate(const std::string& text, bool required);
/// Doubles each apostrophe.
std::string QuoteSQL(const std::string& text);
/// Drops a leading "[" and a trailing "]", each on its own.
std::string StripBrackets(const std::string& text);
/// The file name at the end of a path, behind the last "/" or "\\".
std::string BareFileName(const std::string& path);
/// A directory's path with a "/" at its end; a "\\" there is replaced.
std::string WithSeparator(const std::string& directory);
/// Whether there is a file (also a hidden or read-only one) at the path.
bool FileExists(const std::string& path);
/// The path of a file in a directory, whatever the case of its letters there. A file with exactly the given
/// name comes first, then the first by its bytes. If there is none, the directory and the name as given. The
/// name may begin with folders, which are found in the same way.
std::string FindFile(const std::string& directory, const std::string& name);
/// Whether somebody, this process included, has a data file open. The operating system would let others
/// replace or delete it, and everything written to it from then on would be lost.
bool IsInUse(const std::string& path);
/// Deletes a file; shows a failure.
void DeleteFileChecked(const std::string& path);
/// Each word with an upper-case first letter, the rest unchanged.
std::string ProperCase(const std::string& text);
/// The roots of the machine's drives in one text, each followed by a NUL; empty if there are none.
std::string GetDrives();

}  // namespace dw
