#include "platform/scan/Scanner.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <optional>

#include "platform/scan/ScanRows.h"
#ifdef DROVEWRIGHT_SANE
#include "platform/scan/SaneDevice.h"
#endif

namespace sys {

void Scanner::Reset() {
  CloseScanner();
  Size = ScanSize::Paper;
  ScanTo = kScanToDisplay;
  Image.clear();
  DestImageControl = nullptr;
  ShowSetupBeforeScan = false;
  onSetup = nullptr;
}

#ifdef DROVEWRIGHT_SANE
namespace {

/// The sizes of a sheet and a card, in millimeters.
constexpr double kPaperWidth = 215.9, kPaperHeight = 279.4;
constexpr double kCardWidth = 86, kCardHeight = 54;
/// A scanned page must not be larger than the pictures that a record can store.
constexpr double kMostBytes = 60e6;

double SquareInches(ScanSize size) {
  const double area = size == ScanSize::CreditCard ? kCardWidth * kCardHeight : kPaperWidth * kPaperHeight;
  return area / (25.4 * 25.4);
}

bool Holds(std::string text, const char* word) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return text.find(word) != std::string::npos;
}

class SaneScanner : public Scanner {
 public:
  ~SaneScanner() override {
    device_.reset();
    if (library_ && !SaneDevice::DriverHangs()) library_->exit();
  }

  bool Available() override {
    if (!looked_) Look();
    return !found_.empty();
  }

  void Open() override {
    if (!Available()) throw ScanError("No scanner was found.");
    const auto wanted = std::find_if(found_.begin(), found_.end(), [&](const Found& one) {
      return one.chosen || one.camera == (Size == ScanSize::Camera);
    });
    const Found& found = wanted == found_.end() ? found_.front() : *wanted;
    device_.emplace(*library_, found.name);
    title_ = found.title;
  }

  bool StartScan() override {
    if (!device_) throw ScanError("The scanner is not open.");
    ScanSetup setup{title_, device_->Resolutions(), device_->Modes(), device_->Resolution(), device_->Mode()};
    Propose(setup);
    if (ShowSetupBeforeScan && onSetup && !onSetup(setup)) return false;
    if (!setup.mode.empty()) device_->SetMode(setup.mode);
    if (setup.resolution > 0) device_->SetResolution(setup.resolution);
    device_->SetDepth();
    switch (Size) {
      case ScanSize::CreditCard:
        device_->SetArea(kCardWidth, kCardHeight);
        break;
      case ScanSize::Paper:
        device_->SetArea(kPaperWidth, kPaperHeight);
        break;
      case ScanSize::Camera:
        device_->SetArea(0, 0);
    }
    const ScannedPicture picture = device_->Read(DestImageControl);
    if (ScanTo == kScanToFileAndDisplay) WriteBmp(Image, picture);
    return true;
  }

  void CloseScanner() override { device_.reset(); }

 private:
  struct Found {
    std::string name;
    std::string title;
    bool camera = false;
    bool chosen = false;  ///< the environment names it
  };

  void Look() {
    looked_ = true;
    const SaneLibrary* library = SaneLibrary::Load();
    if (!library || library->init(nullptr, nullptr) != SANE_STATUS_GOOD) return;
    library_ = library;
    if (const char* name = std::getenv("SANE_DEFAULT_DEVICE"); name && *name) {
      found_.push_back({name, name, false, true});
      return;
    }
    const SANE_Device** devices = nullptr;
    if (library_->getDevices(&devices, SANE_TRUE) != SANE_STATUS_GOOD) return;
    for (; *devices; ++devices) {
      const SANE_Device& device = **devices;
      found_.push_back({device.name, std::string(device.vendor) + " " + device.model,
                        Holds(device.type, "camera"), false});
    }
  }

  /// Proposes color and a resolution with handy pictures; the user can choose others.
  void Propose(ScanSetup& setup) const {
    std::erase_if(setup.resolutions,
                  [&](int one) { return 3.0 * one * one * SquareInches(Size) > kMostBytes; });
    const int wanted = Size == ScanSize::CreditCard ? 300 : 150;
    for (const int one : setup.resolutions)
      if (std::abs(one - wanted) <= std::abs(setup.resolution - wanted)) setup.resolution = one;
    const auto color = std::find_if(setup.modes.begin(), setup.modes.end(),
                                    [](const std::string& mode) { return Holds(mode, "color"); });
    if (color != setup.modes.end()) setup.mode = *color;
  }

  const SaneLibrary* library_ = nullptr;
  bool looked_ = false;
  std::vector<Found> found_;
  std::optional<SaneDevice> device_;
  std::string title_;
};

}  // namespace

std::unique_ptr<Scanner> MakeScanner() { return std::make_unique<SaneScanner>(); }

#else
namespace {

class NoScanner : public Scanner {
 public:
  bool Available() override { return false; }
  void Open() override { throw ScanError("No scanner was found."); }
  bool StartScan() override { throw ScanError("The scanner is not open."); }
  void CloseScanner() override {}
};

}  // namespace

std::unique_ptr<Scanner> MakeScanner() { return std::make_unique<NoScanner>(); }
#endif

}  // namespace sys
