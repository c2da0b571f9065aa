// Files as the operating system sees them: existence, copies, deletion, temporary names.
//
// Nothing here may be done to a data file that this process has open: closing any descriptor of such a file
// drops the process's locks on it.
#pragma once

#include <functional>
#include <string>

namespace sys {

/// How an operation on a file ended. The numbers are those of the runtime: 0 done, 53 no such file, 57 device
/// error, 61 disk full, 70 permission denied or in use, 75 path cannot be accessed, 76 no such folder.
struct FileResult {
  int number = 0;
  std::string text;  // empty when done
  bool Done() const { return number == 0; }
};

/// Whether there is a file at the path, also a hidden or read-only one. A folder is not a file.
bool FileExists(const std::string& path);
/// Makes a file writable by its owner, as files copied from a disc are not. True if the file exists, even
/// if its permissions belong to somebody else.
bool ClearReadOnly(const std::string& path);

/// A name that is free in the folder: the prefix, hexadecimal digits and ".TMP". Makes no file.
/// Empty when the folder does not exist or cannot be written.
std::string TemporaryFileName(const std::string& folder, const std::string& prefix);

/// Puts `from` in the place of `to`, which may exist; after a power failure one of the two is there,
/// whole. Works across file systems too.
FileResult RenameOver(const std::string& from, const std::string& to);
/// Deletes one file. A missing file is a fault (53).
FileResult DeleteFile(const std::string& path);
/// Copies a file over `to`, which may exist but must not be the same file. A copy that fails leaves an
/// earlier `to` as it was.
FileResult CopyFile(const std::string& from, const std::string& to);

/// The results of ShellCopy and ShellDelete that callers look at.
inline constexpr int kShellDone = 0;
inline constexpr int kShellCancelled = 7;

/// Copies a file as a file manager does: makes the folder of the target where it is missing, and asks before
/// an existing target is replaced. 0 done, 7 canceled by the user; anything else is a failure code: 2 no
/// such file, 3 no such folder, 5 access denied, 112 disk full, 113 source and target are the same, 31 other.
int ShellCopy(const std::string& from, const std::string& to);
/// Deletes a file; 0 done, else a failure code as above.
int ShellDelete(const std::string& path);

/// Asked before ShellCopy replaces a file; false cancels the copy.
using ReplaceConfirm = std::function<bool(const std::string& target)>;
/// Installs the question; an empty function removes it, and targets are then replaced without asking. Returns
/// the earlier one.
ReplaceConfirm InstallReplaceConfirm(ReplaceConfirm confirm);

}  // namespace sys
