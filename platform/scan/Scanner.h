// A scanner or camera that is connected to this machine.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace sys {

/// The scanner cannot do its work; the text is a sentence for the user.
class ScanError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A picture as the scanner sends it: red, green and blue of each pixel, rows from the top.
struct ScannedPicture {
  int width = 0;
  int height = 0;  ///< the rows that have come in
  std::vector<std::uint8_t> pixels;
  int dotsPerInch = 0;  ///< 0 if the device does not say
};

/// Shows a scan while it is made.
class ScanDisplay {
 public:
  virtual ~ScanDisplay() = default;
  /// `rows` is the number of rows at the end; 0 while it is unknown.
  virtual void ShowScan(const ScannedPicture& soFar, int rows) = 0;
};

/// The kind of original. It chooses the device if there are several, and the area if the device has one.
enum class ScanSize { CreditCard, Paper, Camera };

/// The settings that the user may change before a scan.
struct ScanSetup {
  std::string device;            ///< the scanner's make and model
  std::vector<int> resolutions;  ///< dots per inch, ascending; empty if there is no choice
  std::vector<std::string> modes;
  int resolution = 0;
  std::string mode;
};
/// Shows the settings to the user; false if the user cancels the scan.
using ScanSetupQuestion = std::function<bool(ScanSetup& setup)>;

/// The values of ScanTo.
inline constexpr int kScanToDisplay = 0;
inline constexpr int kScanToFileAndDisplay = 1;

/// Set the properties between Reset and StartScan, but the size before Open. Functions throw ScanError.
class Scanner {
 public:
  virtual ~Scanner() = default;
  /// Whether there is a scanner. The first call searches the connections of this machine (not the network),
  /// which takes a fraction of a second; later calls use its result.
  virtual bool Available() = 0;
  /// Closes the device and clears all properties.
  virtual void Reset();
  virtual void Open() = 0;
  /// Scans with the properties. False if the user canceled in the setup.
  virtual bool StartScan() = 0;
  virtual void CloseScanner() = 0;

  ScanSize Size = ScanSize::Paper;
  int ScanTo = kScanToDisplay;
  std::string Image;                        ///< the BMP file for the scan
  ScanDisplay* DestImageControl = nullptr;  ///< shows the scan; null for none
  bool ShowSetupBeforeScan = false;
  ScanSetupQuestion onSetup;
};

/// The scanners of the system's scanner drivers; none at all on a system without drivers. If the environment
/// variable SANE_DEFAULT_DEVICE names a device, only that one is used, and it can be in the network.
std::unique_ptr<Scanner> MakeScanner();

}  // namespace sys
