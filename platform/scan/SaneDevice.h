// One opened device of the scanner drivers: its options, and the reading of a picture.
#pragma once

#include <string>
#include <vector>

#include "platform/scan/SaneLibrary.h"
#include "platform/scan/Scanner.h"

namespace sys {

class SaneDevice {
 public:
  /// Throws ScanError if the device cannot be opened.
  SaneDevice(const SaneLibrary& library, const std::string& name);
  ~SaneDevice();
  SaneDevice(const SaneDevice&) = delete;
  SaneDevice& operator=(const SaneDevice&) = delete;

  /// The resolutions to choose from: the usual ones that the device has, ascending.
  std::vector<int> Resolutions() const;
  int Resolution() const;
  std::vector<std::string> Modes() const;
  std::string Mode() const;
  /// These two skip what the device does not have, and throw ScanError if the device has it but refuses.
  void SetResolution(int dotsPerInch);
  void SetMode(const std::string& mode);
  /// Sets 8 bits for each sample, if the device has a choice.
  void SetDepth();
  /// Sets width and height from the corner, in millimeters, cut to the device's area; 0 for all of it.
  void SetArea(double width, double height);

  /// Reads one picture, in as many passes as the device makes. Throws ScanError.
  ScannedPicture Read(ScanDisplay* display);
  /// Whether a driver of this process has hung at the end of a scan. The library's own end would then hang
  /// too.
  static bool DriverHangs();

 private:
  struct Option {
    SANE_Int index;
    const SANE_Option_Descriptor* descriptor;
  };
  /// The option with this name, if it can be set now; else its descriptor is null.
  Option Find(const char* name) const;
  double Number(const Option& option) const;
  void SetNumber(const Option& option, double value);
  void SetText(const Option& option, const std::string& value);
  void SetEdges(const char* low, const char* high, double millimeters);
  void Cancel();
  void ReadPasses(ScannedPicture& picture, ScanDisplay* display);
  /// Reads one pass; true if it was the last one.
  bool ReadPass(ScannedPicture& picture, ScanDisplay* display);
  void Check(SANE_Status status) const;

  const SaneLibrary& library_;
  SANE_Handle handle_ = nullptr;
  bool hangs_ = false;
};

}  // namespace sys
