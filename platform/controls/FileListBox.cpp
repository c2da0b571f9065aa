#include "platform/controls/FileListBox.h"

#include <QRegularExpression>
#include <QStringList>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "platform/controls/Application.h"
#include "platform/controls/DirectoryEntries.h"

namespace ui {
namespace {

QList<QRegularExpression> Expressions(const std::string& pattern) {
  QList<QRegularExpression> expressions;
  for (const QString& one : QString::fromStdString(pattern).split(';', Qt::SkipEmptyParts)) {
    QString text = QRegularExpression::escape(one.trimmed());
    text.replace("\\*", ".*").replace("\\?", ".");
    expressions << QRegularExpression(
        QRegularExpression::anchoredPattern(text),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
  }
  return expressions;
}

}  // namespace

FileListBox::FileListBox(const char* name, std::string pattern) : pattern_(std::move(pattern)) {
  setObjectName(QString::fromUtf8(name));
  setUniformItemSizes(true);
}

bool FileListBox::SetPath(const std::string& path) {
  const std::string wanted = PlainPath(path);
  if (!Read(wanted, pattern_)) return false;
  const bool changed = wanted != path_;
  path_ = wanted;
  if (changed && onChange) Guard([this] { onChange(); });
  return true;
}

void FileListBox::SetPattern(const std::string& pattern) {
  const bool changed = pattern != pattern_;
  pattern_ = pattern;
  if (!path_.empty() && !Read(path_, pattern_)) clear();
  if (changed && onChange) Guard([this] { onChange(); });
}

std::string FileListBox::FileName() const {
  // The focus makes the first file current without marking it.
  const QList<QListWidgetItem*> marked = selectedItems();
  return marked.isEmpty() ? std::string() : marked.first()->data(Qt::UserRole).toByteArray().toStdString();
}

bool FileListBox::Read(const std::string& path, const std::string& pattern) {
  const auto entries = ReadDirectory(path);
  if (!entries) return false;
  const QList<QRegularExpression> expressions = Expressions(pattern);
  clear();
  for (const std::string& file : entries->files) {
    const QString shown = QString::fromStdString(file);
    const bool fits = std::any_of(expressions.begin(), expressions.end(),
                                  [&](const QRegularExpression& one) { return one.match(shown).hasMatch(); });
    if (!fits) continue;
    auto* item = new QListWidgetItem(style()->standardIcon(QStyle::SP_FileIcon), shown, this);
    item->setData(Qt::UserRole, QByteArray::fromStdString(file));
  }
  return true;
}

}  // namespace ui
