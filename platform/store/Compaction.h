// Making data files, and making them smaller.
#pragma once

#include <memory>
#include <string>

#include "platform/store/TemporaryFile.h"

namespace store {

class Handle;
class SideFile;

/// A compacted copy of a data file. While this lives nobody else can open, read or write the file, with other
/// tools neither.
class Compaction {
 public:
  /// Copies the file to `target`, without the space of deleted records. 3196 while anyone has it open, also
  /// with another tool, 3183 for a full disk, 3343 for a damaged file, 3204 when the target exists.
  Compaction(const std::string& path, const std::string& target);
  /// Removes the copy unless it has taken its place, and lets others in.
  ~Compaction();
  Compaction(const Compaction&) = delete;
  Compaction& operator=(const Compaction&) = delete;

  /// Puts the copy in the place of the file, as a whole or not at all, also when the process dies. Owner,
  /// group and rights of the file stay. Throws StoreError; the file is then as it was.
  void TakePlace();

 private:
  void CloseToOthers();
  void WriteBack();
  void SpoilOldFile();

  std::string source_;
  std::shared_ptr<SideFile> alone_;
  std::unique_ptr<Handle> handle_;
  std::unique_ptr<TemporaryFile> copy_;
  bool sameRights_ = false;
};

}  // namespace store
