// Rows packed into blocks, in memory or in a temporary file.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>

#include "platform/print/PrintError.h"
#include "platform/print/TemporaryFile.h"
#include "platform/print/data/Rows.h"

namespace print {
namespace {

using rt::Value;
using rt::ValueType;

/// A block is read at once.
constexpr std::size_t kBlockBytes = 64 * 1024;
constexpr std::size_t kMostInMemory = 64 * 1024 * 1024;

/// Appends the bytes of a number as they are in memory; the spool is never read by another machine.
template <typename Number>
void PutNumber(std::string& bytes, Number number) {
  std::array<char, sizeof(Number)> raw;
  std::memcpy(raw.data(), &number, sizeof(Number));
  bytes.append(raw.data(), raw.size());
}

template <typename Number>
Number TakeNumber(const char*& at) {
  Number number;
  std::memcpy(&number, at, sizeof(Number));
  at += sizeof(Number);
  return number;
}

void PutValue(std::string& bytes, const Value& value) {
  bytes.push_back(static_cast<char>(value.Type()));
  switch (value.Type()) {
    case ValueType::Null:
      break;
    case ValueType::Boolean:
      bytes.push_back(std::get<bool>(value.Data()) ? 1 : 0);
      break;
    case ValueType::Integer:
      PutNumber(bytes, std::get<std::int16_t>(value.Data()));
      break;
    case ValueType::Long:
      PutNumber(bytes, std::get<std::int32_t>(value.Data()));
      break;
    case ValueType::Single:
      PutNumber(bytes, std::get<float>(value.Data()));
      break;
    case ValueType::Double:
      PutNumber(bytes, std::get<double>(value.Data()));
      break;
    case ValueType::Currency:
      PutNumber(bytes, std::get<rt::Currency>(value.Data()).Units());
      break;
    case ValueType::Date:
      PutNumber(bytes, std::int64_t{std::get<rt::DateTime>(value.Data()).Time().time_since_epoch().count()});
      break;
    case ValueType::Text: {
      const auto& text = std::get<std::string>(value.Data());
      PutNumber(bytes, static_cast<std::uint32_t>(text.size()));
      bytes += text;
      break;
    }
    case ValueType::Binary: {
      const auto& content = value.AsBinary();
      PutNumber(bytes, static_cast<std::uint32_t>(content.size()));
      bytes.append(content.begin(), content.end());
      break;
    }
  }
}

Value TakeValue(const char*& at) {
  switch (static_cast<ValueType>(*at++)) {
    case ValueType::Null:
      break;
    case ValueType::Boolean:
      return *at++ != 0;
    case ValueType::Integer:
      return TakeNumber<std::int16_t>(at);
    case ValueType::Long:
      return TakeNumber<std::int32_t>(at);
    case ValueType::Single:
      return TakeNumber<float>(at);
    case ValueType::Double:
      return TakeNumber<double>(at);
    case ValueType::Currency:
      return rt::Currency::FromUnits(TakeNumber<std::int64_t>(at));
    case ValueType::Date:
      return rt::DateTime(std::chrono::local_seconds(std::chrono::seconds(TakeNumber<std::int64_t>(at))));
    case ValueType::Text: {
      const auto length = TakeNumber<std::uint32_t>(at);
      at += length;
      return std::string_view(at - length, length);
    }
    case ValueType::Binary: {
      const auto length = TakeNumber<std::uint32_t>(at);
      at += length;
      return rt::Binary(at - length, at);
    }
  }
  return rt::Null{};
}

/// A file that is gone with its descriptor, however the program ends.
class UnnamedFile {
 public:
  UnnamedFile() : directory_(TemporaryDirectory()) {
    fd_ = OpenUnnamedFile(directory_);
    if (fd_ < 0) Fail("No temporary file for the rows of the report can be made in '");
  }
  ~UnnamedFile() { close(fd_); }
  UnnamedFile(const UnnamedFile&) = delete;
  UnnamedFile& operator=(const UnnamedFile&) = delete;

  /// Returns where the bytes begin.
  std::uint64_t Append(const std::string& bytes) {
    const std::uint64_t start = end_;
    for (std::size_t done = 0; done < bytes.size();) {
      const ssize_t wrote =
          pwrite(fd_, bytes.data() + done, bytes.size() - done, static_cast<off_t>(start + done));
      if (wrote < 0 && errno == EINTR) continue;
      if (wrote <= 0) Fail("The rows of the report cannot be kept in '");
      done += static_cast<std::size_t>(wrote);
    }
    end_ += bytes.size();
    return start;
  }

  void Read(std::uint64_t start, std::string& bytes) const {
    for (std::size_t done = 0; done < bytes.size();) {
      const ssize_t got =
          pread(fd_, bytes.data() + done, bytes.size() - done, static_cast<off_t>(start + done));
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) Fail("The rows of the report cannot be read from the temporary file in '");
      done += static_cast<std::size_t>(got);
    }
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    const int error = errno;
    const bool full = error == ENOSPC || error == EDQUOT || error == EFBIG;
    throw PrintError(what + directory_ + "': " + (full ? "the disk is full" : std::strerror(error)) + ".");
  }

  std::string directory_;
  int fd_ = -1;
  std::uint64_t end_ = 0;
};

struct Block {
  std::int64_t first = 0;   ///< the place of its first row
  std::string bytes;        ///< empty once it is in the file
  std::uint64_t start = 0;  ///< in the file
  std::uint32_t size = 0;
  std::vector<std::uint32_t> rows;  ///< where each row begins
};

/// The block of a file that a thread has read last. A report and its subreport are read in turn, so there is
/// more than one.
struct Kept {
  std::uint64_t spool = 0;
  std::size_t block = 0;
  std::string bytes;
};

std::uint64_t NextNumber() {
  static std::atomic<std::uint64_t> number{0};
  return ++number;
}

}  // namespace

class RowSpool::Impl {
 public:
  void Append(std::span<const Value> row) {
    if (blocks_.empty() || blocks_.back().bytes.size() >= kBlockBytes) BeginBlock();
    Block& block = blocks_.back();
    const std::size_t before = block.bytes.size();
    block.rows.push_back(static_cast<std::uint32_t>(before));
    PutNumber(block.bytes, static_cast<std::uint32_t>(row.size()));
    for (const auto& value : row) PutValue(block.bytes, value);
    inMemory_ += block.bytes.size() - before;
    ++count_;
  }

  std::int64_t Count() const { return count_; }

  void Arrange(std::vector<std::uint32_t> order) {
    if (static_cast<std::int64_t>(order.size()) != count_)
      throw PrintError("An order of the rows that does not have each row once.");
    // In memory, rows need not lie in their order to be read in it.
    if (file_)
      Rewrite(order);
    else
      order_ = std::move(order);
  }

  void Read(std::int64_t place, Row& row) const {
    if (place < 0 || place >= count_)
      throw PrintError("The report has no row " + std::to_string(place + 1) + ".");
    if (!order_.empty()) place = order_[static_cast<std::size_t>(place)];
    const auto after =
        std::upper_bound(blocks_.begin(), blocks_.end(), place,
                         [](std::int64_t wanted, const Block& block) { return wanted < block.first; });
    const auto index = static_cast<std::size_t>(after - blocks_.begin()) - 1;
    const Block& block = blocks_[index];
    const char* at = BytesOf(block, index) + block.rows[static_cast<std::size_t>(place - block.first)];
    row.resize(TakeNumber<std::uint32_t>(at));
    for (auto& value : row) value = TakeValue(at);
  }

 private:
  void BeginBlock() {
    // The block that is being filled stays in memory.
    if (file_ && !blocks_.empty()) MoveToFile(blocks_.back());
    if (!file_ && inMemory_ > kMostInMemory) {
      file_ = std::make_unique<UnnamedFile>();
      for (auto& block : blocks_) MoveToFile(block);
    }
    blocks_.emplace_back();
    blocks_.back().first = count_;
    blocks_.back().bytes.reserve(kBlockBytes + kBlockBytes / 8);
  }

  void MoveToFile(Block& block) {
    block.start = file_->Append(block.bytes);
    block.size = static_cast<std::uint32_t>(block.bytes.size());
    block.bytes = std::string();
  }

  const char* BytesOf(const Block& block, std::size_t index) const {
    if (!block.bytes.empty()) return block.bytes.data();
    thread_local std::array<Kept, 4> kept;
    thread_local std::size_t oldest = 0;
    for (const auto& one : kept)
      if (one.spool == number_ && one.block == index) return one.bytes.data();
    Kept& one = kept[oldest];
    oldest = (oldest + 1) % kept.size();
    one.spool = 0;  // in case that reading fails
    one.bytes.resize(block.size);
    file_->Read(block.start, one.bytes);
    one.spool = number_;
    one.block = index;
    return one.bytes.data();
  }

  void AppendPacked(std::string_view packed) {
    if (blocks_.empty() || blocks_.back().bytes.size() >= kBlockBytes) BeginBlock();
    Block& block = blocks_.back();
    block.rows.push_back(static_cast<std::uint32_t>(block.bytes.size()));
    block.bytes += packed;
    inMemory_ += packed.size();
    ++count_;
  }

  /// Writes the rows into another file in their new order, as many at a time as memory may hold; for each
  /// such part the file is read through once, because single rows here and there would take far longer.
  void Rewrite(const std::vector<std::uint32_t>& order) {
    constexpr std::uint64_t kPartBytes = 32 * 1024 * 1024;
    const std::uint64_t average = std::max<std::uint64_t>(1, inMemory_ / static_cast<std::uint64_t>(count_));
    const std::size_t part = std::max<std::size_t>(1, kPartBytes / average);
    std::vector<std::uint32_t> target(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) target[order[i]] = static_cast<std::uint32_t>(i);
    Impl ordered;
    std::string bytes;
    for (std::size_t from = 0; from < order.size(); from += part) {
      std::vector<std::pair<std::size_t, std::size_t>> rows(std::min(part, order.size() - from));
      bytes.clear();
      for (std::size_t index = 0; index < blocks_.size(); ++index) {
        const Block& block = blocks_[index];
        const char* content = BytesOf(block, index);
        const std::size_t size = block.bytes.empty() ? block.size : block.bytes.size();
        for (std::size_t i = 0; i < block.rows.size(); ++i) {
          const std::size_t place = target[static_cast<std::size_t>(block.first) + i] - from;
          if (place >= rows.size()) continue;  // of another part
          const std::size_t end = i + 1 < block.rows.size() ? block.rows[i + 1] : size;
          rows[place] = {bytes.size(), end - block.rows[i]};
          bytes.append(content + block.rows[i], end - block.rows[i]);
        }
      }
      for (const auto& [start, size] : rows)
        ordered.AppendPacked(std::string_view(bytes).substr(start, size));
    }
    number_ = ordered.number_;
    blocks_ = std::move(ordered.blocks_);
    file_ = std::move(ordered.file_);
  }

  std::uint64_t number_ = NextNumber();
  std::vector<std::uint32_t> order_;  ///< empty: as they came
  std::vector<Block> blocks_;
  std::unique_ptr<UnnamedFile> file_;
  std::size_t inMemory_ = 0;  ///< bytes of all rows; once they pass the limit they go to the file
  std::int64_t count_ = 0;
};

RowSpool::RowSpool() : impl_(std::make_unique<Impl>()) {}
RowSpool::~RowSpool() = default;
void RowSpool::Append(std::span<const rt::Value> row) { impl_->Append(row); }
std::int64_t RowSpool::Count() const { return impl_->Count(); }
void RowSpool::Arrange(std::vector<std::uint32_t> order) { impl_->Arrange(std::move(order)); }
void RowSpool::Read(std::int64_t place, Row& row) const { impl_->Read(place, row); }

}  // namespace print
