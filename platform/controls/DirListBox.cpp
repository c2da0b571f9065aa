#include "platform/controls/DirListBox.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QStyle>
#include <vector>

#include "platform/controls/Application.h"
#include "platform/controls/DirectoryEntries.h"

namespace ui {
namespace {

std::string PathOf(const QTreeWidgetItem* item) {
  return item ? item->data(0, Qt::UserRole).toByteArray().toStdString() : std::string();
}

/// The directories along the path: "/" first, the path itself last.
std::vector<std::string> WayTo(const std::string& path) {
  std::vector<std::string> way{"/"};
  for (std::size_t end = 1; path.size() > 1 && end != std::string::npos;) {
    end = path.find('/', end);
    way.push_back(path.substr(0, end));
    if (end != std::string::npos) ++end;
  }
  return way;
}

QTreeWidgetItem* NewItem(const std::string& path, const QIcon& icon) {
  auto* item = new QTreeWidgetItem;
  const std::string name = path == "/" ? path : path.substr(path.rfind('/') + 1);
  item->setText(0, QString::fromStdString(name));
  item->setIcon(0, icon);
  item->setData(0, Qt::UserRole, QByteArray::fromStdString(path));
  return item;
}

}  // namespace

DirListBox::DirListBox(const char* name) {
  setObjectName(QString::fromUtf8(name));
  setHeaderHidden(true);
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setExpandsOnDoubleClick(false);
  setUniformRowHeights(true);
  header()->setStretchLastSection(true);
  // The tree may not be cleared while it still works on the click.
  connect(
      this, &QTreeWidget::itemDoubleClicked, this, [this] { EnterCurrent(); }, Qt::QueuedConnection);
}

bool DirListBox::SetPath(const std::string& path) {
  const std::string wanted = PlainPath(path);
  const auto entries = ReadDirectory(wanted);
  if (!entries) return false;
  clear();
  const QIcon open = style()->standardIcon(QStyle::SP_DirOpenIcon);
  const QIcon closed = style()->standardIcon(QStyle::SP_DirClosedIcon);
  QTreeWidgetItem* present = nullptr;
  for (const std::string& step : WayTo(wanted)) {
    QTreeWidgetItem* item = NewItem(step, open);
    if (present)
      present->addChild(item);
    else
      addTopLevelItem(item);
    present = item;
  }
  const std::string base = wanted == "/" ? wanted : wanted + '/';
  QList<QTreeWidgetItem*> children;
  for (const std::string& directory : entries->directories) children << NewItem(base + directory, closed);
  present->addChildren(children);
  expandAll();
  // As wide as the list, or wider if a name needs it.
  header()->setMinimumSectionSize(sizeHintForColumn(0));
  setCurrentItem(present);
  scrollToItem(present);

  const bool changed = wanted != path_;
  path_ = wanted;
  if (changed && onChange) Guard([this] { onChange(); });
  return true;
}

void DirListBox::EnterCurrent() {
  const std::string path = PathOf(currentItem());
  if (!path.empty() && path != path_) SetPath(path);
}

void DirListBox::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!enter) {
    QTreeWidget::keyPressEvent(event);
    return;
  }
  // The present directory cannot be entered again: Enter then belongs to the form.
  if (PathOf(currentItem()) == path_) {
    event->ignore();
    return;
  }
  EnterCurrent();
}

}  // namespace ui
