// A disk on which a process dies in the middle of a chosen write.
#pragma once

#include <signal.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace test {

/// What happens to bytes that were written but not yet synced.
enum class Death {
  Killed,      ///< the file has them: the system goes on
  PowerFails,  ///< every second write of them has not reached the disk
};

/// Sits between the database and the files of this process, from Install until the process ends.
class FatalWrites {
 public:
  /// Which operations count.
  enum class Counts { All, SyncsAndCuts };

  /// Dies in the middle of the operation (write, sync or truncation) with this number from 1; 0 only counts
  /// them.
  static void Install(long fatal, Death death, Counts counts = Counts::All) {
    The() = FatalWrites{};
    The().fatal_ = fatal;
    The().counts_ = counts;
    The().death_ = death;
    The().system_ = sqlite3_vfs_find(nullptr);
    static sqlite3_vfs vfs;
    vfs = *The().system_;
    vfs.pNext = nullptr;
    vfs.zName = "fatal";
    vfs.szOsFile = static_cast<int>(sizeof(File)) + The().system_->szOsFile;
    vfs.xOpen = Open;
    sqlite3_vfs_register(&vfs, 1);
  }
  static long Count() { return The().count_; }

 private:
  /// The bytes under a write, so that it can be undone.
  struct Covered {
    sqlite3_int64 at = 0;
    std::string bytes;
    sqlite3_int64 size = 0;  ///< the size of the file before
  };
  struct File {
    sqlite3_file base;
    sqlite3_file* system;
    std::vector<Covered>* unsafe;
  };

  static FatalWrites& The() {
    static FatalWrites the;
    return the;
  }
  static File& Of(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }
  static sqlite3_file* System(sqlite3_file* file) { return Of(file).system; }

  static int Open(sqlite3_vfs*, const char* name, sqlite3_file* to, int flags, int* outFlags) {
    File& file = Of(to);
    file.base.pMethods = nullptr;
    file.system = reinterpret_cast<sqlite3_file*>(&file + 1);
    file.unsafe = nullptr;
    const int code = The().system_->xOpen(The().system_, name, file.system, flags, outFlags);
    if (!file.system->pMethods) return code;
    file.unsafe = new std::vector<Covered>;
    file.base.pMethods = &Methods();
    The().open_.insert(&file);
    return code;
  }
  static int Close(sqlite3_file* file) {
    The().open_.erase(&Of(file));
    delete Of(file).unsafe;
    return System(file)->pMethods->xClose(System(file));
  }
  static int Read(sqlite3_file* file, void* to, int count, sqlite3_int64 at) {
    return System(file)->pMethods->xRead(System(file), to, count, at);
  }
  static int Write(sqlite3_file* file, const void* from, int count, sqlite3_int64 at) {
    Cover(Of(file), at, count);
    const bool last = The().counts_ == Counts::All && Next();
    const int code =
        System(file)->pMethods->xWrite(System(file), from, last ? std::max(1, count / 2) : count, at);
    if (last) Die();
    return code;
  }
  static int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    Cover(Of(file), size, SizeOf(Of(file)) - size);
    const bool last = Next();
    const int code = System(file)->pMethods->xTruncate(System(file), size);
    if (last) Die();
    return code;
  }
  static int Sync(sqlite3_file* file, int flags) {
    if (Next()) Die();
    const int code = System(file)->pMethods->xSync(System(file), flags);
    if (code == SQLITE_OK) Of(file).unsafe->clear();
    return code;
  }
  static int Size(sqlite3_file* file, sqlite3_int64* size) {
    return System(file)->pMethods->xFileSize(System(file), size);
  }
  static int Lock(sqlite3_file* file, int level) {
    return System(file)->pMethods->xLock(System(file), level);
  }
  static int Unlock(sqlite3_file* file, int level) {
    return System(file)->pMethods->xUnlock(System(file), level);
  }
  static int Reserved(sqlite3_file* file, int* result) {
    return System(file)->pMethods->xCheckReservedLock(System(file), result);
  }
  static int Control(sqlite3_file* file, int what, void* argument) {
    return System(file)->pMethods->xFileControl(System(file), what, argument);
  }
  static int Sector(sqlite3_file* file) { return System(file)->pMethods->xSectorSize(System(file)); }
  static int Abilities(sqlite3_file* file) {
    return System(file)->pMethods->xDeviceCharacteristics(System(file));
  }
  static const sqlite3_io_methods& Methods() {
    static const sqlite3_io_methods methods = [] {
      sqlite3_io_methods m{};
      m.iVersion = 1;
      m.xClose = Close;
      m.xRead = Read;
      m.xWrite = Write;
      m.xTruncate = Truncate;
      m.xSync = Sync;
      m.xFileSize = Size;
      m.xLock = Lock;
      m.xUnlock = Unlock;
      m.xCheckReservedLock = Reserved;
      m.xFileControl = Control;
      m.xSectorSize = Sector;
      m.xDeviceCharacteristics = Abilities;
      return m;
    }();
    return methods;
  }

  static sqlite3_int64 SizeOf(const File& file) {
    sqlite3_int64 size = 0;
    file.system->pMethods->xFileSize(file.system, &size);
    return size;
  }
  static void Cover(File& file, sqlite3_int64 at, sqlite3_int64 count) {
    if (The().death_ == Death::Killed) return;
    Covered covered;
    covered.at = at;
    covered.size = SizeOf(file);
    const sqlite3_int64 there =
        std::clamp<sqlite3_int64>(covered.size - at, 0, std::max<sqlite3_int64>(0, count));
    covered.bytes.resize(static_cast<std::size_t>(there));
    if (there > 0)
      file.system->pMethods->xRead(file.system, covered.bytes.data(), static_cast<int>(there), at);
    file.unsafe->push_back(std::move(covered));
  }
  static bool Next() { return ++The().count_ == The().fatal_; }

  [[noreturn]] static void Die() {
    for (File* file : The().open_) {
      auto& writes = *file->unsafe;
      for (std::size_t i = writes.size(); i-- > 0;) {
        if (i % 2 != 0) continue;
        const Covered& covered = writes[i];
        if (!covered.bytes.empty())
          file->system->pMethods->xWrite(file->system, covered.bytes.data(),
                                         static_cast<int>(covered.bytes.size()), covered.at);
        // Undoing a write at the end of the file also restores its size, unless a later write went further.
        if (i + 1 == writes.size() && SizeOf(*file) > covered.size)
          file->system->pMethods->xTruncate(file->system, covered.size);
      }
    }
    kill(getpid(), SIGKILL);
    _exit(1);
  }

  sqlite3_vfs* system_ = nullptr;
  long fatal_ = 0;
  long count_ = 0;
  Death death_ = Death::Killed;
  Counts counts_ = Counts::All;
  std::set<File*> open_;
};

}  // namespace test
