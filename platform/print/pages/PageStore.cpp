#include "platform/print/pages/PageStore.h"

#include <sys/stat.h>
#include <unistd.h>
#include <zstd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <mutex>
#include <utility>

#include "platform/print/PrintError.h"
#include "platform/print/TemporaryFile.h"
#include "platform/print/pages/PagePacking.h"

namespace print {
namespace {

struct CompressorEnd {
  void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
};
struct DecompressorEnd {
  void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
};

/// The fastest level: a page shrinks to a third, and more effort gains little.
constexpr int kLevel = 1;

std::string Reason(int error) {
  if (error == ENOSPC || error == EDQUOT || error == EFBIG) return "the disk is full";
  if (error == EACCES || error == EPERM) return "permission denied";
  if (error == ENOENT || error == ENOTDIR) return "there is no such directory";
  if (error == EROFS) return "the disk can only be read";
  return std::strerror(error);
}

}  // namespace

class PageStore::Impl {
 public:
  explicit Impl(ReportFacts facts) : facts_(std::move(facts)), directory_(TemporaryDirectory()) {
    fd_ = OpenUnnamedFile(directory_);
    if (fd_ < 0)
      throw PrintError("No temporary file for the pages can be made in '" + directory_ +
                       "': " + Reason(errno) + ".");
    compressor_.reset(ZSTD_createCCtx());
    ZSTD_CCtx_setParameter(compressor_.get(), ZSTD_c_compressionLevel, kLevel);
    ZSTD_CCtx_setParameter(compressor_.get(), ZSTD_c_checksumFlag, 1);
  }
  ~Impl() { close(fd_); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  const ReportFacts& Facts() const { return facts_; }

  void Append(const Page& page) {
    PackPage(page, &raw_);
    packed_.resize(ZSTD_compressBound(raw_.size()));
    const std::size_t size =
        ZSTD_compress2(compressor_.get(), packed_.data(), packed_.size(), raw_.data(), raw_.size());
    if (ZSTD_isError(size) != 0)
      throw PrintError("Page " + std::to_string(page.number) +
                       " cannot be stored: " + ZSTD_getErrorName(size) + ".");
    WriteAtEnd(packed_.data(), size, page.number);
    const std::scoped_lock lock(mutex_);
    places_.push_back({end_, static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(raw_.size())});
    end_ += size;
  }

  Page Read(int index) const {
    Place place;
    {
      const std::scoped_lock lock(mutex_);
      if (index < 0 || static_cast<std::size_t>(index) >= places_.size())
        throw PrintError("The report has no page " + std::to_string(index + 1) + ".");
      place = places_[static_cast<std::size_t>(index)];
    }
    const auto failed = [&](const std::string& reason) {
      return PrintError("Page " + std::to_string(index + 1) +
                        " cannot be read from the temporary file: " + reason + ".");
    };
    // Each reading thread keeps its memory for the next page.
    thread_local std::string packed;
    thread_local std::string raw;
    thread_local const std::unique_ptr<ZSTD_DCtx, DecompressorEnd> decompressor(ZSTD_createDCtx());
    packed.resize(place.packed);
    for (std::size_t done = 0; done < packed.size();) {
      const ssize_t got =
          pread(fd_, packed.data() + done, packed.size() - done, static_cast<off_t>(place.offset + done));
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) throw failed(Reason(errno));
      if (got == 0) throw failed("the file has been cut");
      done += static_cast<std::size_t>(got);
    }
    raw.resize(place.raw);
    const std::size_t size =
        ZSTD_decompressDCtx(decompressor.get(), raw.data(), raw.size(), packed.data(), packed.size());
    if (ZSTD_isError(size) != 0) throw failed(ZSTD_getErrorName(size));
    return UnpackPage({raw.data(), size});
  }

  int NewSlot() {
    const std::scoped_lock lock(mutex_);
    slots_.emplace_back();
    return static_cast<int>(slots_.size()) - 1;
  }
  void FillSlot(int slot, const SlotValue& value) {
    std::string packed = PackSlot(value);
    const std::scoped_lock lock(mutex_);
    if (slot < 0 || static_cast<std::size_t>(slot) >= slots_.size())
      throw PrintError("The report has no late value " + std::to_string(slot) + ".");
    slots_[static_cast<std::size_t>(slot)] = std::move(packed);
  }
  std::optional<SlotValue> Slot(int slot) const {
    std::string packed;
    {
      const std::scoped_lock lock(mutex_);
      if (slot < 0 || static_cast<std::size_t>(slot) >= slots_.size()) return std::nullopt;
      packed = slots_[static_cast<std::size_t>(slot)];
    }
    if (packed.empty()) return std::nullopt;
    return UnpackSlot(packed);
  }

  void AddOutline(OutlineEntry entry) {
    const std::scoped_lock lock(mutex_);
    outline_.push_back(std::move(entry));
  }
  std::vector<OutlineEntry> Outline() const {
    const std::scoped_lock lock(mutex_);
    return {outline_.begin(), outline_.end()};
  }

  void Finish() { finished_ = true; }
  bool Finished() const { return finished_; }
  int PageCount() const {
    const std::scoped_lock lock(mutex_);
    return static_cast<int>(places_.size());
  }

 private:
  struct Place {
    std::uint64_t offset = 0;
    std::uint32_t packed = 0;
    std::uint32_t raw = 0;
  };

  void WriteAtEnd(const char* bytes, std::size_t size, int pageNumber) {
    for (std::size_t done = 0; done < size;) {
      const ssize_t n = pwrite(fd_, bytes + done, size - done, static_cast<off_t>(end_ + done));
      if (n > 0) {
        done += static_cast<std::size_t>(n);
        continue;
      }
      if (n < 0 && errno == EINTR) continue;
      const int error = n < 0 ? errno : ENOSPC;
      // The beginning of the page gives its room back; the pages before it stay.
      [[maybe_unused]] const int cut = ftruncate(fd_, static_cast<off_t>(end_));
      throw PrintError("Page " + std::to_string(pageNumber) + " cannot be stored in '" + directory_ +
                       "', where temporary files are: " + Reason(error) + ".");
    }
  }

  const ReportFacts facts_;
  const std::string directory_;
  int fd_ = -1;
  // Used by the appending thread alone.
  std::unique_ptr<ZSTD_CCtx, CompressorEnd> compressor_;
  std::string raw_;
  std::string packed_;
  std::uint64_t end_ = 0;

  std::atomic<bool> finished_ = false;
  mutable std::mutex mutex_;  // for what follows; never held during a call of the file system
  std::deque<Place> places_;
  /// Packed: most late values are so short that they need no memory besides the string. Empty until filled.
  std::deque<std::string> slots_;
  std::deque<OutlineEntry> outline_;
};

PageStore::PageStore(ReportFacts facts) : impl_(std::make_unique<Impl>(std::move(facts))) {}
PageStore::~PageStore() = default;

const ReportFacts& PageStore::Facts() const { return impl_->Facts(); }
void PageStore::Append(const Page& page) { impl_->Append(page); }
int PageStore::NewSlot() { return impl_->NewSlot(); }
void PageStore::FillSlot(int slot, const SlotValue& value) { impl_->FillSlot(slot, value); }
void PageStore::AddOutline(OutlineEntry entry) { impl_->AddOutline(std::move(entry)); }
void PageStore::Finish() { impl_->Finish(); }
int PageStore::PageCount() const { return impl_->PageCount(); }
bool PageStore::Finished() const { return impl_->Finished(); }
Page PageStore::Read(int index) const { return impl_->Read(index); }
std::optional<SlotValue> PageStore::Slot(int slot) const { return impl_->Slot(slot); }
std::vector<OutlineEntry> PageStore::Outline() const { return impl_->Outline(); }

}  // namespace print
