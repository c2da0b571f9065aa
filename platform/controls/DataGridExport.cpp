// The grid's export of rows: to the clipboard and to files of comma separated values.
#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "platform/controls/DataGrid.h"
#include "platform/controls/Format.h"
#include "platform/runtime/Waits.h"
#include "platform/screen/Screen.h"
#include "platform/system/Files.h"

namespace ui {
namespace {

/// More rows than this belong in a file.
constexpr std::int64_t kMostCopied = 100'000;

struct Stretch {
  std::int64_t first;
  std::int64_t last;
};

/// The chosen rows as ranges, from the top down.
std::vector<Stretch> Chosen(const QItemSelection& selection) {
  std::vector<Stretch> stretches;
  for (const auto& range : selection) stretches.push_back({range.top(), range.bottom()});
  std::sort(stretches.begin(), stretches.end(),
            [](const Stretch& a, const Stretch& b) { return a.first < b.first; });
  std::vector<Stretch> joined;
  for (const auto& one : stretches) {
    if (!joined.empty() && one.first <= joined.back().last + 1)
      joined.back().last = std::max(joined.back().last, one.last);
    else
      joined.push_back(one);
  }
  return joined;
}

// Other programs must be able to read a number as one.
std::string CsvText(const GridModel::Column& column, const rt::Value& value) {
  if (value.Type() == rt::ValueType::Binary) return GridModel::Shown(column, value).toStdString();
  return Format(value, value.Type() == rt::ValueType::Date ? column.shown.format : "");
}

void WriteCell(std::ostream& out, const std::string& text) {
  const bool blanks = !text.empty() && (text.front() == ' ' || text.back() == ' ');
  if (!blanks && text.find_first_of(",\"\r\n") == std::string::npos) {
    out << text;
    return;
  }
  out << '"';
  for (const char c : text) out << (c == '"' ? "\"\"" : std::string_view(&c, 1));
  out << '"';
}

/// From this number of rows on, a notice says that the writing takes time.
constexpr std::int64_t kLongFile = 50'000;

/// Shows a notice for as long as it lives.
class Notice {
 public:
  explicit Notice(std::int64_t rows) : shown_(rows >= kLongFile) {
    if (shown_) screen::ShowNotice("Save as CSV", "Saving " + std::to_string(rows) + " rows...");
  }
  ~Notice() {
    if (shown_) screen::HideNotice();
  }
  Notice(const Notice&) = delete;
  Notice& operator=(const Notice&) = delete;

 private:
  bool shown_;
};

// The dialog adds the ending itself, so that it also asks before it replaces the file of that name.
std::string AskFileName(QWidget& parent, const std::string& suggested) {
  QFileDialog dialog(&parent, "Save as CSV", QString(), "Comma separated values (*.csv);;All files (*)");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix("csv");
  dialog.selectFile(QString::fromStdString(suggested));
  rt::AboutToWait();
  return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0).toStdString() : std::string();
}

void TellNotSaved(const std::string& path, const std::string& reason) {
  screen::MessageBox("The file '" + path + "' could not be saved.\n\n" + reason, screen::Icon::Exclamation);
}

}  // namespace

std::string DataGrid::SelectedText() {
  const auto columns = ShownColumns();
  QString text;
  const auto line = [&](const auto& cell) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i != 0) text += '\t';
      text += cell(columns[i]);
    }
    text += '\n';
  };
  line([&](int column) { return QString::fromStdString(model_.At(column).shown.caption); });
  for (const auto& stretch : Chosen(selectionModel()->selection())) {
    model_.Visit(stretch.first, stretch.last, [&](const std::vector<rt::Value>& values) {
      line([&](int column) {
        return GridModel::Shown(model_.At(column), values[static_cast<std::size_t>(column)]);
      });
      return true;
    });
  }
  return text.toStdString();
}

void DataGrid::CopySelection() {
  std::int64_t rows = 0;
  for (const auto& stretch : Chosen(selectionModel()->selection())) rows += stretch.last - stretch.first + 1;
  if (rows == 0) return;
  if (rows > kMostCopied) {
    screen::MessageBox("There are too many rows to copy. Save them as CSV instead.",
                       screen::Icon::Information);
    return;
  }
  const screen::Hourglass pointer;
  QGuiApplication::clipboard()->setText(QString::fromStdString(SelectedText()));
}

bool DataGrid::SaveCsv(const std::string& path) {
  const screen::Hourglass pointer;
  auto folder = std::filesystem::path(path).parent_path().string();
  if (folder.empty()) folder = ".";
  const std::string temporary = sys::TemporaryFileName(folder, "CSV");
  if (temporary.empty()) {
    TellNotSaved(path, "Nothing can be written to that folder.");
    return false;
  }
  bool read = false;
  std::string reason;
  errno = 0;
  {
    const Notice notice(model_.rowCount());
    std::ofstream out(temporary, std::ios::binary);
    read = WriteCsv(out);
    out.close();
    if (!out) reason = std::generic_category().message(errno != 0 ? errno : EIO);
  }
  if (read && reason.empty()) {
    const auto renamed = sys::RenameOver(temporary, path);
    if (renamed.Done()) return true;
    reason = renamed.text;
  }
  if (sys::FileExists(temporary)) sys::DeleteFile(temporary);
  // The data control has reported a fault of the data itself.
  if (read) TellNotSaved(path, reason);
  return false;
}

bool DataGrid::WriteCsv(std::ostream& out) {
  const auto columns = ShownColumns();
  const auto line = [&](const auto& cell) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i != 0) out << ',';
      WriteCell(out, cell(columns[i]));
    }
    out << "\r\n";
  };
  out << "\xEF\xBB\xBF";
  line([&](int column) { return model_.At(column).shown.caption; });
  return model_.rowCount() == 0 ||
         model_.Visit(0, model_.rowCount() - 1, [&](const std::vector<rt::Value>& values) {
           line([&](int column) {
             return CsvText(model_.At(column), values[static_cast<std::size_t>(column)]);
           });
           return out.good();
         });
}

void DataGrid::SaveAs() {
  const std::string suggested =
      (accessibleName().isEmpty() ? "List" : accessibleName().toStdString()) + ".csv";
  const std::string path = askFileName ? askFileName(suggested) : AskFileName(*this, suggested);
  if (path.empty()) return;
  SaveCsv(path);
}

}  // namespace ui
