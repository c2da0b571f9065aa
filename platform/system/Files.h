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
/// Makes a file writable by its owner, because files copied from a disc are not. True if the file exists,
/// even if its permissions belong to another user.
bool ClearReadOnly(const std::string& path);

/// A free name in the folder: the prefix, hexadecimal digits and ".TMP". Creates no file. Empty if the folder
/// does not exist or is not writable.
std::string TemporaryFileName(const std::string& folder, const std::string& prefix);

/// Moves `from` to the name `to`, which may exist. After a power failure, one of the two is there, whole.
/// Works across file systems too.
FileResult RenameOver(const std::string& from, const std::string& to);
/// Deletes one file. A missing file is a fault (53).
FileResult DeleteFile(const std::string& path);
/// Copies a file over `to`, which may exist but must not be the same file. If the copy fails, an earlier `to`
/// stays as it was.
FileResult CopyFile(const std::string& from, const std::string& to);

/// The results of ShellCopy and ShellDelete that callers look at.
inline constexpr int kShellDone = 0;
inline constexpr int kShellCanceled = 7;

/// Copies a file as a file manager does: creates the folder of the target if there is none, and asks before
/// it replaces a target. Returns 0 on success, 7 if the user canceled; anything else is a failure code: 2 no
/// such file, 3 no such folder, 5 access denied, 112 disk full, 113 source and target are the same, 31 other.
int ShellCopy(const std::string& from, const std::string& to);
/// Deletes a file. Returns 0 on success, else a failure code as above.
int ShellDelete(const std::string& path);

/// ShellCopy asks this before it replaces a file; false cancels the copy.
using ReplaceConfirm = std::function<bool(const std::string& target)>;
/// Installs the question and returns the earlier one. An empty function removes it: then ShellCopy replaces
/// targets without asking.
ReplaceConfirm InstallReplaceConfirm(ReplaceConfirm confirm);

}  // namespace sys
