// Making a data file smaller.
#pragma once

namespace store {

/// A compacted copy of a data file. While this lives nobody else can open, read or write the file, with other
/// tools neither. At its end the copy is removed unless it has taken its place, and others are let in.
class Compaction {
 public:
  virtual ~Compaction() = default;
  /// Puts the copy in the place of the file, as a whole or not at all, also when the process dies. Owner,
  /// group and rights of the file stay. Throws StoreError; the file is then as it was.
  virtual void TakePlace() = 0;
};

}  // namespace store
