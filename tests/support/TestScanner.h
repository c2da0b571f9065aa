#pragma once

#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/scan/Scanner.h"
#include "support/TempDirectory.h"

namespace test {

/// The configuration of the scanner drivers in this process. It never is the machine's own, so that no test
/// looks for real scanners. It must be set before anything loads the drivers, which read its place only once.
class ScannerConfiguration {
 public:
  ScannerConfiguration() {
    setenv("SANE_CONFIG_DIR", directory_.Path().c_str(), 1);
    unsetenv("SANE_DEFAULT_DEVICE");
    Write("dll.conf", "");
  }
  void Write(const std::string& file, const std::string& lines) const {
    std::ofstream(directory_.Path(file)) << lines;
  }

 private:
  TempDirectory directory_;
};
inline const ScannerConfiguration scannerConfiguration;

/// The drivers' own device for tests, connected as long as this object lives; it draws a color pattern.
class TestScanner {
 public:
  /// `lines` are added to its configuration.
  explicit TestScanner(const std::string& lines = {}) {
    scannerConfiguration.Write("test.conf",
                               "number_of_devices 1\nmode Color\ndepth 8\nresolution 50\n"
                               "test-picture \"Color pattern\"\nhand-scanner false\nthree-pass false\n"
                               "read-status-code \"Default\"\n" +
                                   lines);
    scannerConfiguration.Write("dll.conf", "test\n");
  }
  ~TestScanner() { scannerConfiguration.Write("dll.conf", ""); }
  TestScanner(const TestScanner&) = delete;
  TestScanner& operator=(const TestScanner&) = delete;

  /// Whether this machine has the driver.
  static bool Installed() { return sys::MakeScanner()->Available(); }
};

}  // namespace test
