// Small operations that all forms share. They hold no state.
#pragma once

#include <string>

namespace dw {

/// Tells what is wrong with a date text, if anything is: empty though required, no date, a year below 1800.
bool ValidDate(const std::string& text, bool required);
/// Doubles each apostrophe.
std::string QuoteSQL(const std::string& text);
/// Drops a leading "[" and a trailing "]", each on its own.
std::string StripBrackets(const std::string& text);
/// The file name at the end of a path, behind the last "/" or "\\".
std::string BareFileName(const std::string& path);
/// A directory's path with a "/" at its end; a "\\" there is taken for one.
std::string WithSeparator(const std::string& directory);
/// Whether a file (also a hidden or read-only one) stands at the path.
bool FileExists(const std::string& path);
/// The path of a file in a directory, whatever the case of its letters there: the name as given goes before
/// others, then the first by its bytes. Where there is none, the directory and the name as given. The name
/// may begin with folders, which are found in the same way.
std::string FindFile(const std::string& directory, const std::string& name);
/// Whether somebody, this process included, has a data file open. The system would let it be replaced or
/// deleted under them, and what they write from then on would be lost.
bool IsInUse(const std::string& path);
/// Deletes a file; a failure is shown.
void DeleteFileChecked(const std::string& path);
/// Each word with an upper-case first letter, the rest as it stands.
std::string ProperCase(const std::string& text);
/// The roots of the machine's drives in one text, each with a NUL behind it; empty when there are none.
std::string GetDrives();

}  // namespace dw
