#include "fleet/forms/frmAssetPicture.h"

#include <QShortcut>
#include <QVBoxLayout>
#include <string>

#include "data/BrackenfelGlobals.h"
#include "data/MainConnection.h"
#include "fleet/forms/PictureForms.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

/// The window's size at first, in characters and lines.
constexpr int kWidth = 90;
constexpr int kLines = 30;

/// Whether a picture is stored with the asset.
bool HasPicture(std::int32_t id) {
  const MainConnection main;
  return main.IsOpen() && main.Finds("SELECT ID FROM Vehicles WHERE ID = " + std::to_string(id) +
                                     " AND Photograph IS NOT NULL")
                              .value_or(false);
}

}  // namespace

frmAssetPicture::frmAssetPicture() : Form("frmAssetPicture"), pictureData_(*this, "dtaPicture") {
  setWindowTitle("Picture of Asset");
  pictureData_.Bind(picture, "Photograph");
  picture.setFrameStyle(QFrame::NoFrame);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(&picture);
  resize(fontMetrics().averageCharWidth() * kWidth, fontMetrics().height() * kLines);
  auto* escape = new QShortcut(Qt::Key_Escape, this);
  connect(escape, &QShortcut::activated, this, [this] { Unload(); });
}

void frmAssetPicture::OnLoad() {
  pictureData_.DatabaseName = DataFile;
  Read(-1);
  ui::CenterForm(*this);
}

void frmAssetPicture::OnActivate() {
  if (!activated_) ReadPicture();
}

void frmAssetPicture::ReadPicture() {
  activated_ = true;
  Read(DataID);
}

void frmAssetPicture::Read(std::int32_t id) {
  const screen::Hourglass hourglass;
  pictureData_.RecordSource = "SELECT * FROM Vehicles WHERE ID = " + std::to_string(id);
  pictureData_.Refresh();
}

void OpenAssetPicture(std::int32_t id) {
  if (!HasPicture(id)) {
    screen::MessageBox("No photograph available.  ", screen::Icon::Information);
    return;
  }
  const screen::Hourglass hourglass;
  const bool open = ui::Existing<frmAssetPicture>() != nullptr;
  auto& form = ui::The<frmAssetPicture>();
  form.LoadForm();
  form.DataID = id;
  // An open window shows another asset's picture, or an earlier one of this asset.
  if (open) form.ReadPicture();
  form.ShowForm();
}

}  // namespace dw
