// The grid's part for taking rows elsewhere: the clipboard and files of comma separated values.
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
#include "platform/screen/Screen.h"
#include "platform/system/Files.h"

namespace ui {
namespace {

/// More rows than this are for a file.
constexpr std::int64_t kMostCopied = 100'000;

struct Stretch {
  std::int64_t first;
  std::int64_t last;
};

/// The chosen rows as stretches from the top down.
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

// What other programs read as a number must look like one.
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
  const auto columns = ShownColumns();
  bool read = false;
  errno = 0;
  {
    std::ofstream out(temporary, std::ios::binary);
    out << "\xEF\xBB\xBF";
    const auto line = [&](const auto& cell) {
      for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i != 0) out << ',';
        WriteCell(out, cell(columns[i]));
      }
      out << "\r\n";
    };
    line([&](int column) { return model_.At(column).shown.caption; });
    read = model_.rowCount() == 0 ||
           model_.Visit(0, model_.rowCount() - 1, [&](const std::vector<rt::Value>& values) {
             line([&](int column) {
               return CsvText(model_.At(column), values[static_cast<std::size_t>(column)]);
             });
             return out.good();
           });
    out.close();
    if (read && out.good()) {
      const auto renamed = sys::RenameOver(temporary, path);
      if (renamed.Done()) return true;
      TellNotSaved(path, renamed.text);
    } else if (read) {
      TellNotSaved(path, std::generic_category().message(errno != 0 ? errno : EIO));
    }
  }
  // A fault of the data has been told by the data control.
  if (sys::FileExists(temporary)) sys::DeleteFile(temporary);
  return false;
}

void DataGrid::SaveAs() {
  const std::string suggested =
      (accessibleName().isEmpty() ? "List" : accessibleName().toStdString()) + ".csv";
  std::string path;
  if (askFileName) {
    path = askFileName(suggested);
  } else {
    path = QFileDialog::getSaveFileName(this, "Save as CSV", QString::fromStdString(suggested),
                                        "Comma separated values (*.csv);;All files (*)")
               .toStdString();
  }
  if (path.empty()) return;
  if (std::filesystem::path(path).extension().empty()) path += ".csv";
  SaveCsv(path);
}

}  // namespace ui
