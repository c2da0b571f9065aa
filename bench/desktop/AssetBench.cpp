// The window of an asset with many transactions and readings, without and with a large picture.
#include <QBuffer>
#include <QImage>
#include <QPushButton>
#include <stdexcept>
#include <string>

#include "bench/desktop/Desk.h"
#include "fleet/forms/PictureForms.h"
#include "fleet/forms/frmInventoryList.h"
#include "fleet/forms/frmInventoryMaint.h"

namespace bench {
namespace {

constexpr int kYears = 5;
constexpr int kYearlyTransactions = 30;
constexpr int kTransactions = 5000;
constexpr int kReadings = 2000;
constexpr int kRounds = 7;
constexpr int kPhotos = 60;
constexpr double kMegabyte = 1048576;
const std::string kWindow = dw::frmInventoryMaint::kName;

/// A picture with a sky, a ground and grain all over, as a camera takes it: the grain makes the file large.
QImage Scene(int width, int height) {
  QImage image(width, height, QImage::Format_RGB888);
  std::uint32_t dice = 1;
  for (int y = 0; y < height; ++y) {
    uchar* line = image.scanLine(y);
    const int light = 70 + 110 * y / height;
    for (int x = 0; x < width * 3; ++x) {
      dice = dice * 1664525 + 1013904223;
      const int hill = y > height / 2 + (x / 7) % 60 ? -35 : 20 * (x % 3);
      line[x] = static_cast<uchar>(std::clamp(light + hill + static_cast<int>(dice >> 27) - 16, 0, 255));
    }
  }
  return image;
}

QByteArray Encoded(const QImage& image, const char* format, int quality) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, format, quality))
    throw std::runtime_error(std::string("no picture can be written as ") + format);
  return bytes;
}

class AssetOnScreen {
 public:
  AssetOnScreen(int& argc, char** argv, int transactions)
      : desk_(argc, argv, transactions / (kYearlyTransactions * kYears) + 1, kYears),
        file_(desk_.MainFile()) {
    id_ = file_.Number(
        "SELECT ID FROM \"Vehicles\" WHERE \"No_Longer_In_Service\" = 0 ORDER BY \"Asset ID\" LIMIT 1");
    Gather("Maintenance Transactions", kTransactions);
    Gather("Odometer Entries", kReadings);
  }

  void Window(const std::string& what) {
    Opening best;
    double resident = 0;
    double peak = 0;
    double before = 0;
    double settled = 0;  // before the second round, which finds everything in memory
    for (int round = 0; round < kRounds; ++round) {
      TrimMemory();
      ForgetPeak();
      before = ResidentMegabytes();
      const Opening one = Open();
      // The first round loads fonts, style and code as well.
      if (round == 1) {
        TrimMemory();
        resident = ResidentMegabytes() - before;
        peak = PeakMegabytes() - before;
        settled = before;
      }
      if (one.Whole() < best.Whole()) best = one;
      ui::The<dw::frmInventoryMaint>().cancelButton->click();
      desk_.Settle();
    }
    Tell("asset's window, " + what + ": opened and painted", best.Whole(), "ms");
    Tell("  made and loaded, without its record", best.load, "ms");
    Tell("  record, lists and due work read", best.show, "ms");
    Tell("  painted", best.paint, "ms");
    Tell("  memory of the open window", resident, "MB");
    Tell("  most memory while it was opened", peak, "MB");
    Tell("  memory that five more openings leave behind", before - settled, "MB");
  }

  void Photo(const std::string& what) {
    Tell("the picture's own window, " + what + ": opened and painted",
         Best(kRounds,
              [&] {
                desk_.CloseAll();
                return desk_.UntilPainted("frmAssetPicture",
                                          [&] { dw::OpenAssetPicture(static_cast<int>(id_)); });
              }),
         "ms");
    desk_.CloseAll();
  }

  void List(const std::string& what) {
    double peak = 0;
    const double time = Best(kRounds, [&] {
      desk_.CloseAll();
      TrimMemory();
      ForgetPeak();
      const double before = ResidentMegabytes();
      const double one =
          desk_.UntilPainted(dw::frmInventoryList::kName, [] { ui::The<dw::frmInventoryList>().ShowForm(); });
      peak = PeakMegabytes() - before;
      return one;
    });
    desk_.CloseAll();
    Tell("asset list, " + what + ": opened and painted", time, "ms");
    Tell("  most memory while it was opened", peak, "MB");
  }

  /// Stores the picture with the asset, or with `count` assets from the first one on.
  void Store(const QByteArray& picture, int assets = 1) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(
        file_.Db(),
        "UPDATE \"Vehicles\" SET \"Photograph\" = ?1 WHERE ID IN (SELECT ID FROM \"Vehicles\" WHERE "
        "\"No_Longer_In_Service\" = 0 ORDER BY \"Asset ID\" LIMIT ?2)",
        -1, &statement, nullptr);
    sqlite3_bind_blob64(statement, 1, picture.constData(), static_cast<sqlite3_uint64>(picture.size()),
                        SQLITE_STATIC);
    sqlite3_bind_int(statement, 2, assets);
    const int result = sqlite3_step(statement);
    sqlite3_finalize(statement);
    if (result != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(file_.Db()));
  }

 private:
  struct Opening {
    double load = 1e12;
    double show = 0;
    double paint = 0;
    double Whole() const { return load + show + paint; }
  };

  /// Opened in the way a list opens it.
  Opening Open() {
    Opening opening;
    const double whole = desk_.UntilPainted(kWindow, [&] {
      opening.load = Seconds([&] { ui::The<dw::frmInventoryMaint>().LoadForm(); }) * 1000;
      auto& window = ui::The<dw::frmInventoryMaint>();
      window.DataID = static_cast<std::int32_t>(id_);
      opening.show = Seconds([&] { window.ShowForm(); }) * 1000;
    });
    opening.paint = whole - opening.load - opening.show;
    auto& window = ui::The<dw::frmInventoryMaint>();
    if (window.transactionGrid.RecordCount() != kTransactions ||
        window.readingGrid.RecordCount() != kReadings)
      throw std::runtime_error("the asset has not the rows that were to be measured");
    return opening;
  }

  /// Moves rows of other assets to this one until it has the wanted number.
  void Gather(const std::string& table, int rows) {
    const std::string quoted = "\"" + table + "\"";
    const std::string own = "(SELECT \"Asset ID\" FROM \"Vehicles\" WHERE ID = " + std::to_string(id_) + ")";
    const std::int64_t has = file_.Number("SELECT COUNT(*) FROM " + quoted + " WHERE \"Asset ID\" = " + own);
    file_.Run("UPDATE " + quoted + " SET \"Asset ID\" = " + own + " WHERE ID IN (SELECT ID FROM " + quoted +
              " WHERE \"Asset ID\" <> " + own + " ORDER BY ID LIMIT " + std::to_string(rows - has) + ")");
    Tell("of the asset: " + table,
         static_cast<double>(file_.Number("SELECT COUNT(*) FROM " + quoted + " WHERE \"Asset ID\" = " + own)),
         "rows");
  }

  Desk desk_;
  PlainFile file_;
  std::int64_t id_ = 0;
};

}  // namespace

int DeskAsset(int& argc, char** argv, int transactions) {
  AssetOnScreen asset(argc, argv, transactions);
  asset.Window("no picture");
  asset.List("no pictures");

  const QByteArray photo = Encoded(Scene(4608, 3456), "jpg", 97);
  Tell("picture of 16 megapixels as JPEG", static_cast<double>(photo.size()) / kMegabyte, "MB");
  asset.Store(photo);
  asset.Window("with the JPEG");
  asset.Photo("with the JPEG");
  asset.List("one asset with the JPEG");

  const QByteArray bitmap = Encoded(Scene(1872, 1872), "bmp", -1);
  Tell("picture of 3.5 megapixels as BMP", static_cast<double>(bitmap.size()) / kMegabyte, "MB");
  asset.Store(bitmap);
  asset.Window("with the BMP");
  asset.Photo("with the BMP");

  const QByteArray small = Encoded(Scene(2592, 1944), "jpg", 97);
  Tell("picture of 5 megapixels as JPEG", static_cast<double>(small.size()) / kMegabyte, "MB");
  asset.Store(small, kPhotos);
  asset.List("60 assets with one each");
  return 0;
}

}  // namespace bench
