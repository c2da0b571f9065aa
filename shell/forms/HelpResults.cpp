#include "shell/forms/HelpResults.h"

#include <QApplication>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTextDocument>

namespace dw {
namespace {

constexpr int kPageRole = Qt::UserRole;
constexpr int kExcerptRole = Qt::UserRole + 1;
constexpr int kMargin = 5;

class HitDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    item.text.clear();
    const QStyle* style = item.widget != nullptr ? item.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);

    const bool chosen = item.state.testFlag(QStyle::State_Selected);
    const bool enabled = item.state.testFlag(QStyle::State_Enabled);
    const QColor color = item.palette.color(enabled ? QPalette::Normal : QPalette::Disabled,
                                            chosen ? QPalette::HighlightedText : QPalette::Text);
    QTextDocument document;
    SetUp(document, item.font, index, item.rect.width(), color);
    painter->save();
    painter->translate(item.rect.topLeft());
    document.drawContents(painter);
    painter->restore();
  }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QTextDocument document;
    const auto* list = qobject_cast<const QListWidget*>(option.widget);
    const int width = list != nullptr ? list->viewport()->width() : option.rect.width();
    SetUp(document, option.font, index, width, Qt::black);
    return {width, static_cast<int>(document.size().height())};
  }

 private:
  static void SetUp(QTextDocument& document, const QFont& font, const QModelIndex& index, int width,
                    const QColor& color) {
    document.setDefaultFont(font);
    document.setDocumentMargin(kMargin);
    document.setTextWidth(width);
    document.setHtml(QString("<div style=\"color:%1\"><b>%2</b><br>%3</div>")
                         .arg(color.name(), index.data().toString().toHtmlEscaped(),
                              index.data(kExcerptRole).toString().toHtmlEscaped()));
  }
};

}  // namespace

HelpResults::HelpResults(QWidget* parent) : QListWidget(parent) {
  setItemDelegate(new HitDelegate(this));
  setAlternatingRowColors(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // Each row is as high as its text at the list's width.
  setResizeMode(QListView::Adjust);
}

void HelpResults::Fill(const std::vector<HelpHit>& hits) {
  clear();
  found_ = static_cast<int>(hits.size());
  for (const HelpHit& hit : hits) {
    auto* item = new QListWidgetItem(QString::fromStdString(hit.title), this);
    item->setData(kPageRole, QString::fromStdString(hit.page));
    item->setData(kExcerptRole, QString::fromStdString(hit.excerpt));
  }
  if (!hits.empty()) return;
  auto* none = new QListWidgetItem("Nothing found", this);
  none->setData(kExcerptRole, "No page holds all of these words. Try fewer, or others.");
  none->setFlags(Qt::NoItemFlags);
}

std::string HelpResults::CurrentPage() const {
  const QListWidgetItem* item = currentItem();
  return item == nullptr ? std::string() : item->data(kPageRole).toString().toStdString();
}

}  // namespace dw
