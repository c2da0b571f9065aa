#include "data/GenericTools.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "data/Attempt.h"
#include "data/GenericDAO.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "platform/store/Engine.h"
#include "platform/system/Files.h"
#include "platform/system/Machine.h"

namespace dw {

using screen::Icon;

namespace {

namespace fs = std::filesystem;

/// The runtime's number for a file that is in use or that this user may not touch.
constexpr int kPermissionDenied = 70;

/// The entry's name as the folder spells it; empty if there is no such file or folder.
std::string EntryIn(const std::string& folder, const std::string& name, bool wantsFolder) {
  std::string found;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::string candidate = entry->path().filename().string();
    if (!rt::EqualNoCase(candidate, name)) continue;
    std::error_code gone;
    if (entry->is_directory(gone) != wantsFolder || gone) continue;
    if (candidate == name) return candidate;
    if (found.empty() || candidate < found) found = candidate;
  }
  return found;
}

}  // namespace

bool ValidDate(const std::string& text, bool required) {
  if (text.empty()) {
    if (required) screen::MessageBox("A date is required for this field.", Icon::Critical);
    return !required;
  }
  const auto date = rt::ParseDate(text);
  if (!date) {
    screen::MessageBox("That is not a valid date. Please try again.", Icon::Exclamation);
    return false;
  }
  if (rt::DatePart("yyyy", *date) < 1800) {
    screen::MessageBox("Year cannot be less than 1800. Please try again.", Icon::Exclamation);
    return false;
  }
  return true;
}

std::string QuoteSQL(const std::string& text) { return rt::DoubleApostrophes(text); }

std::string StripBrackets(const std::string& text) {
  std::string bare = text;
  if (bare.starts_with('[')) bare.erase(0, 1);
  if (bare.ends_with(']')) bare.pop_back();
  return bare;
}

std::string BareFileName(const std::string& path) {
  const auto separator = path.find_last_of("/\\");
  return separator == std::string::npos ? path : path.substr(separator + 1);
}

std::string WithSeparator(const std::string& directory) {
  if (directory.ends_with('/')) return directory;
  if (directory.ends_with('\\')) return directory.substr(0, directory.size() - 1) + '/';
  return directory + '/';
}

bool FileExists(const std::string& path) { return sys::FileExists(path); }

std::string FindFile(const std::string& directory, const std::string& name) {
  std::string asGiven = WithSeparator(directory) + name;
  if (FileExists(asGiven)) return asGiven;
  std::string path = WithSeparator(directory);
  for (std::size_t begin = 0; begin < name.size();) {
    const std::size_t end = std::min(name.find('/', begin), name.size());
    const bool isFolder = end < name.size();
    const std::string entry = EntryIn(path, name.substr(begin, end - begin), isFolder);
    if (entry.empty()) return asGiven;
    path += isFolder ? entry + '/' : entry;
    begin = end + 1;
  }
  return path;
}

bool IsInUse(const std::string& path) {
  bool inUse = false;
  Try([&] { inUse = store::Engine::Of(path).InUse(path); });
  return inUse;
}

void DeleteFileChecked(const std::string& path) {
  sys::FileResult result{kPermissionDenied, {}};
  if (!IsInUse(path)) result = sys::DeleteFile(path);
  if (result.Done()) return;
  if (result.number == kPermissionDenied)
    screen::MessageBox("The file is in use by another person and cannot be deleted.");
  else
    screen::MessageBox("Could not delete file.\r" + result.text);
}

std::string ProperCase(const std::string& text) {
  std::string proper = text;
  const auto length = static_cast<int>(rt::Length(text));
  bool wordBegins = true;
  int position = 0;
  for (const char c : text) {
    if (rt::IsContinuation(c)) continue;
    ++position;
    if (wordBegins) UppercaseCharAt(position, proper, length);
    wordBegins = c == ' ';
  }
  return proper;
}

std::string GetDrives() {
  std::string roots;
  for (const sys::Drive& drive : sys::Drives()) roots += drive.root + '\0';
  return roots;
}

}  // namespace dw
