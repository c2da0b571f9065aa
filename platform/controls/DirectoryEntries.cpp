#include "platform/controls/DirectoryEntries.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"

namespace ui {
namespace {

namespace fs = std::filesystem;

void SortNames(std::vector<std::string>& names) {
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    const std::string lowA = rt::LowerCase(a);
    const std::string lowB = rt::LowerCase(b);
    return lowA != lowB ? lowA < lowB : a < b;
  });
}

}  // namespace

std::optional<DirectoryEntries> ReadDirectory(const std::string& path) {
  DirectoryEntries entries;
  std::error_code error;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
    std::string name = entry->path().filename().string();
    if (name.starts_with('.')) continue;
    std::error_code gone;
    const bool isDirectory = entry->is_directory(gone);
    (isDirectory ? entries.directories : entries.files).push_back(std::move(name));
  }
  if (error) {
    screen::MessageBox("Device unavailable\r\r" + path + " cannot be read: " + error.message() + ".",
                       screen::Icon::Critical);
    return std::nullopt;
  }
  SortNames(entries.directories);
  SortNames(entries.files);
  return entries;
}

std::string PlainPath(const std::string& path) {
  std::error_code error;
  std::string plain = fs::absolute(path, error).lexically_normal().string();
  while (plain.size() > 1 && plain.ends_with('/')) plain.pop_back();
  return plain;
}

}  // namespace ui
