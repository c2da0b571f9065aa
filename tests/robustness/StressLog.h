// What each process of the stress test says of its own work, in memory that outlives a kill.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace stress {

/// Each work is announced before it begins and then ends with Done or Refused; one that was killed in between
/// may be stored or not.
enum class Event : std::int64_t {
  Increment,       ///< a: the counter
  Add,             ///< a: the number in the new row
  Edit,            ///< a: the row's ID, b: its new number
  Delete,          ///< a: the row's ID
  DeleteBelow,     ///< a: all own rows with a smaller number
  ChangeTogether,  ///< a: the group, b: the number in a row that is added with it, 0 for none
  Done,            ///< a: the ID of the row that was added, if one was
  Refused,
};

struct Entry {
  Event event{};
  std::int64_t a = 0;
  std::int64_t b = 0;
};

/// The log of one process: written by it, read by all that were forked from the process that made the log.
class Log {
 public:
  Log() : file_(memfd_create("stress", MFD_CLOEXEC)) {
    if (file_ < 0) throw std::runtime_error("no memory for a log");
  }
  ~Log() {
    if (file_ >= 0) close(file_);
  }
  Log(Log&& other) noexcept : file_(other.file_) { other.file_ = -1; }
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  void Write(Event event, std::int64_t a = 0, std::int64_t b = 0) const {
    const Entry entry{event, a, b};
    if (write(file_, &entry, sizeof entry) != sizeof entry) throw std::runtime_error("the log is full");
  }
  std::vector<Entry> Read() const {
    std::vector<Entry> entries;
    Entry entry;
    for (off_t at = 0; pread(file_, &entry, sizeof entry, at) == sizeof entry; at += sizeof entry)
      entries.push_back(entry);
    return entries;
  }

 private:
  int file_;
};

}  // namespace stress
