#include "platform/controls/DriveListBox.h"

#include <QStyle>
#include <utility>

#include "platform/controls/Application.h"
#include "platform/controls/DirectoryEntries.h"

namespace ui {
namespace {

QString Shown(const sys::Drive& drive) {
  const QString root = QString::fromStdString(drive.root);
  switch (drive.kind) {
    case sys::DriveKind::Remote:
      return root + " (network)";
    case sys::DriveKind::RemovableDisc:
      return root + " (disc)";
    case sys::DriveKind::Fixed:
      break;
  }
  return root == "/" ? root + " (this computer)" : root;
}

QStyle::StandardPixmap IconOf(sys::DriveKind kind) {
  switch (kind) {
    case sys::DriveKind::Remote:
      return QStyle::SP_DriveNetIcon;
    case sys::DriveKind::RemovableDisc:
      return QStyle::SP_DriveCDIcon;
    case sys::DriveKind::Fixed:
      break;
  }
  return QStyle::SP_DriveHDIcon;
}

bool Holds(const std::string& root, const std::string& path) {
  return root == "/" || path == root || path.starts_with(root + '/');
}

}  // namespace

DriveListBox::DriveListBox(const char* name, Provider drives) : provider_(std::move(drives)) {
  setObjectName(QString::fromUtf8(name));
  Read();
  connect(this, &QComboBox::currentIndexChanged, this, [this] {
    if (onChange) Guard([this] { onChange(); });
  });
}

std::string DriveListBox::Drive() const { return currentData().toByteArray().toStdString(); }

bool DriveListBox::SetDrive(const std::string& path) {
  const std::string wanted = PlainPath(path);
  int best = -1;
  qsizetype longest = -1;
  for (int i = 0; i < count(); ++i) {
    const QByteArray root = itemData(i).toByteArray();
    if (root.size() <= longest || !Holds(root.toStdString(), wanted)) continue;
    best = i;
    longest = root.size();
  }
  if (best >= 0) setCurrentIndex(best);
  return best >= 0;
}

void DriveListBox::showPopup() {
  Read();
  QComboBox::showPopup();
}

void DriveListBox::Read() {
  const QByteArray chosen = currentData().toByteArray();
  const bool first = count() == 0;
  {
    // If the chosen drive is still there, a new reading of the list is not a change.
    const QSignalBlocker quiet(this);
    clear();
    for (const sys::Drive& drive : provider_())
      addItem(style()->standardIcon(IconOf(drive.kind)), Shown(drive), QByteArray::fromStdString(drive.root));
    const int index = findData(chosen);
    setCurrentIndex(index >= 0 ? index : (count() > 0 ? 0 : -1));
  }
  if (!first && currentData().toByteArray() != chosen && onChange) Guard([this] { onChange(); });
}

}  // namespace ui
