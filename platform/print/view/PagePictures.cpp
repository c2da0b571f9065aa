#include "platform/print/view/PagePictures.h"

#include <QPainter>
#include <algorithm>

#include "platform/print/PrintError.h"
#include "platform/print/view/PagePainter.h"

namespace print {
namespace {

constexpr int kPicturesKept = 200;
/// Widths in characters of the font, so that pictures grow with it.
constexpr int kPictureCharacters = 14;

}  // namespace

QVariant PagePictures::Model::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || !store) return {};
  switch (role) {
    case Qt::DisplayRole:
      return QString::number(index.row() + 1);
    case Qt::AccessibleTextRole:
      return QString("Page %1").arg(index.row() + 1);
    case Qt::DecorationRole:
      return Picture(index.row());
    case Qt::TextAlignmentRole:
      return Qt::AlignHCenter;
    default:
      return {};
  }
}

QPixmap PagePictures::Model::Picture(int page) const {
  if (const QPixmap* known = pictures_.object(page)) return *known;
  const double ratio = list_.devicePixelRatioF();
  const QSize size = list_.iconSize();
  QPixmap picture;
  try {
    const Page read = store->Read(page);
    const int width = std::min(size.width(), size.height() * read.width / std::max<Length>(1, read.height));
    picture = QPixmap::fromImage(PagePicture(read, *store, static_cast<int>(width * ratio)));
  } catch (const PrintError&) {
    // The view of the page itself shows the reason.
    picture = QPixmap(size * ratio);
    picture.fill(Qt::white);
  }
  QPainter frame(&picture);
  frame.setPen(Qt::gray);
  frame.drawRect(0, 0, picture.width() - 1, picture.height() - 1);
  frame.end();
  picture.setDevicePixelRatio(ratio);
  pictures_.insert(page, new QPixmap(picture));
  return picture;
}

void PagePictures::Model::Grow(int count) {
  if (count <= pages) return;
  beginInsertRows({}, pages, count - 1);
  pages = count;
  endInsertRows();
}

void PagePictures::Model::Clear() {
  beginResetModel();
  pages = 0;
  pictures_.clear();
  pictures_.setMaxCost(kPicturesKept);
  endResetModel();
}

PagePictures::PagePictures(QWidget* parent) : QListView(parent), model_(new Model(*this)) {
  setObjectName("pictures");
  setAccessibleName("Pictures of the pages");
  setModel(model_);
  setViewMode(QListView::IconMode);
  setMovement(QListView::Static);
  setResizeMode(QListView::Adjust);
  setUniformItemSizes(true);
  setSpacing(6);
  const int width = fontMetrics().averageCharWidth() * kPictureCharacters;
  setIconSize({width, width});
}

void PagePictures::Show(const PageStore* store) {
  model_->Clear();
  model_->store = store;
  Refresh();
}

void PagePictures::Refresh() {
  if (model_->store) model_->Grow(model_->store->PageCount());
}

void PagePictures::SetCurrent(int page) {
  if (page < 0 || page >= model_->pages || currentIndex().row() == page) return;
  following_ = true;
  setCurrentIndex(model_->index(page, 0));
  following_ = false;
}

void PagePictures::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QListView::currentChanged(current, previous);
  if (!following_ && current.isValid() && chosen) chosen(current.row());
}

}  // namespace print
