// A scanner or camera that is connected to this machine.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace sys {

/// The scanner cannot do what was asked; the text is a sentence for the user.
class ScanError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A picture as it comes in: red, green and blue of each pixel, rows from the top.
struct ScannedPicture {
  int width = 0;
  int height = 0;  ///< rows that are there
  std::vector<std::uint8_t> pixels;
  int dotsPerInch = 0;  ///< 0 if the device does not say
};

/// Shows a scan while it is being made.
class ScanDisplay {
 public:
  virtual ~ScanDisplay() = default;
  /// `rows` is how many there will be; 0 while nobody knows.
  virtual void ShowScan(const ScannedPicture& soFar, int rows) = 0;
};

/// What is scanned. It chooses the device where there are several, and the area where the device has one.
enum class ScanSize { CreditCard, Paper, Camera };

/// What the user may set before a scan.
struct ScanSetup {
  std::string device;            ///< the scanner's make and model
  std::vector<int> resolutions;  ///< dots per inch, ascending; empty where there is no choice
  std::vector<std::string> modes;
  int resolution = 0;
  std::string mode;
};
/// Asks the user; false if the user no longer wants the scan.
using ScanSetupQuestion = std::function<bool(ScanSetup& setup)>;

/// The values of ScanTo.
inline constexpr int kScanToDisplay = 0;
inline constexpr int kScanToFileAndDisplay = 1;

/// The properties are set between Reset and StartScan, the size before Open. Functions throw ScanError.
class Scanner {
 public:
  virtual ~Scanner() = default;
  /// Whether there is one. The first call looks at the connections of this machine (not into the network),
  /// which takes a fraction of a second; later ones know.
  virtual bool Available() = 0;
  /// Gives up what is open and forgets all properties.
  virtual void Reset();
  virtual void Open() = 0;
  /// Scans with the properties. False if the user canceled in the set-up.
  virtual bool StartScan() = 0;
  virtual void CloseScanner() = 0;

  ScanSize Size = ScanSize::Paper;
  int ScanTo = kScanToDisplay;
  std::string Image;                        ///< the BMP file that the scan goes to
  ScanDisplay* DestImageControl = nullptr;  ///< where it is shown; null for nowhere
  bool ShowSetupBeforeScan = false;
  ScanSetupQuestion onSetup;
};

/// The scanners that the system's scanner drivers know, or none at all where the system has no drivers. The
/// environment variable SANE_DEFAULT_DEVICE names a device that goes before all others, so that a scanner in
/// the network can be used.
std::unique_ptr<Scanner> MakeScanner();

}  // namespace sys
