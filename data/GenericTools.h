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
/// Whether a file (also a hidden or read-only one) stands at the path.
bool FileExists(const std::string& path);
/// Deletes a file; a failure is shown.
void DeleteFileChecked(const std::string& path);
/// Each word with an upper-case first letter, the rest as it stands.
std::string ProperCase(const std::string& text);
/// The roots of the machine's drives in one text, each with a NUL behind it; empty when there are none.
std::string GetDrives();

}  // namespace dw
