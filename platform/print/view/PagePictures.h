// Small pictures of all pages at the side of the preview.
#pragma once

#include <QAbstractListModel>
#include <QCache>
#include <QListView>
#include <QPixmap>
#include <functional>

#include "platform/print/pages/PageStore.h"

namespace print {

/// A list with a picture of each page, drawn when it comes into sight.
class PagePictures : public QListView {
 public:
  explicit PagePictures(QWidget* parent = nullptr);
  void Show(const PageStore* store);
  /// Takes in pages that were added since the last call.
  void Refresh();
  /// Marks the page, from 0, without a call of `chosen`.
  void SetCurrent(int page);
  /// Called when the user chooses a page, from 0.
  std::function<void(int page)> chosen;

 protected:
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

 private:
  class Model : public QAbstractListModel {
   public:
    explicit Model(PagePictures& list) : QAbstractListModel(&list), list_(list) {}
    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : pages; }
    QVariant data(const QModelIndex& index, int role) const override;
    void Grow(int count);
    void Clear();
    int pages = 0;
    const PageStore* store = nullptr;

   private:
    QPixmap Picture(int page) const;
    PagePictures& list_;
    mutable QCache<int, QPixmap> pictures_;
  };

  Model* model_;
  bool following_ = false;
};

}  // namespace print
