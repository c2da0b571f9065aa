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
/// Whether a file (also a hidden or read-only one) stands at the path.
bool FileExists(const std::string& path);
/// Deletes a file; a failure is shown.
void DeleteFileChecked(const std::string& path);
/// Each word with an upper-case first letter, the rest as it stands.
std::string ProperCase(const std::string& text);
/// The roots of the machine's drives, each in four characters' worth of text as the drive search walks it.
std::string GetDrives();

}  // namespace dw
