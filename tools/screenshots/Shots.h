// Pictures of the program's windows.
#pragma once

#include <QString>
#include <string>
#include <vector>

class QPixmap;
class QWidget;

namespace shots {

/// Where the pictures go: as `<folder>/<name>.png`.
class Album {
 public:
  explicit Album(std::string folder) : folder_(std::move(folder)) {}
  /// Lets a window settle, inspects it and takes its picture. Throws std::runtime_error if the file cannot be
  /// written.
  void Take(QWidget& window, const std::string& name);
  void Keep(const QPixmap& picture, const std::string& name);
  /// The faults of the windows so far, see Inspect.
  const std::vector<std::string>& Faults() const { return faults_; }

 private:
  std::string folder_;
  std::vector<std::string> faults_;
};

/// Opens every window on the sample fleet in the data path, one after the other, and takes its picture.
void TakeAll(Album& album);

}  // namespace shots
