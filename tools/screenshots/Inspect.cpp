#include "tools/screenshots/Inspect.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QScreen>
#include <QStyle>
#include <QTableView>

namespace shots {
namespace {

class Inspection {
 public:
  explicit Inspection(QWidget& window) : window_(window) {}

  std::vector<std::string> Run() {
    const QRect area = window_.screen()->availableGeometry();
    if (!window_.isFullScreen() && !window_.isMaximized() && !area.contains(window_.frameGeometry()))
      Find(window_,
           "is larger than the screen: " + Size(window_.frameGeometry().size()) + " on " + Size(area.size()));
    for (QWidget* widget : window_.findChildren<QWidget*>())
      if (widget->isVisible() && widget->window() == &window_) Look(*widget);
    return std::move(found_);
  }

 private:
  static std::string Size(QSize size) {
    return std::to_string(size.width()) + "x" + std::to_string(size.height());
  }

  void Find(const QWidget& widget, const std::string& what) {
    const std::string name =
        widget.objectName().isEmpty() ? widget.metaObject()->className() : widget.objectName().toStdString();
    found_.push_back(name + " " + what);
  }

  void Look(QWidget& widget) {
    QWidget* around = widget.parentWidget();
    const bool scrolls = qobject_cast<QAbstractScrollArea*>(around) ||
                         qobject_cast<QAbstractScrollArea*>(around->parentWidget());
    if (!scrolls && !around->rect().contains(widget.geometry())) Find(widget, "sticks out of its frame");
    if (auto* label = qobject_cast<QLabel*>(&widget))
      LookAtLabel(*label);
    else if (auto* button = qobject_cast<QAbstractButton*>(&widget))
      LookAtButton(*button);
    else if (auto* field = qobject_cast<QLineEdit*>(&widget))
      LookAtField(*field);
    else if (auto* group = qobject_cast<QGroupBox*>(&widget))
      LookAtGroup(*group);
    else if (auto* table = qobject_cast<QTableView*>(&widget))
      LookAtTable(*table);
  }

  void LookAtLabel(const QLabel& label) {
    if (label.text().isEmpty()) return;
    const bool fits = label.wordWrap() ? label.heightForWidth(label.width()) <= label.height()
                                       : label.sizeHint().width() <= label.width() &&
                                             label.sizeHint().height() <= label.height();
    if (!fits) Find(label, "cuts off \"" + label.text().toStdString() + "\"");
  }

  void LookAtButton(const QAbstractButton& button) {
    if (button.text().isEmpty()) return;
    if (!window_.screen()->availableGeometry().contains(QRect(button.mapToGlobal(QPoint()), button.size())))
      Find(button, "is out of reach");
    if (button.fontMetrics().size(Qt::TextShowMnemonic, button.text()).width() > button.width() ||
        button.fontMetrics().height() > button.height())
      Find(button, "cuts off \"" + button.text().toStdString() + "\"");
  }

  // Names and notes may be longer than their field. Dates, times and figures have to be visible as a whole.
  void LookAtField(const QLineEdit& field) {
    static const QRegularExpression figure("^[-0-9/$,.:() ]+([AP]M)?$");
    if (!figure.match(field.text()).hasMatch()) return;
    constexpr int kInnerMargin = 4;
    if (field.fontMetrics().horizontalAdvance(field.text()) + kInnerMargin > field.contentsRect().width())
      Find(field, "cuts off \"" + field.text().toStdString() + "\"");
  }

  void LookAtGroup(const QGroupBox& group) {
    if (group.fontMetrics().size(Qt::TextShowMnemonic, group.title()).width() > group.width())
      Find(group, "cuts off \"" + group.title().toStdString() + "\"");
  }

  void LookAtTable(const QTableView& table) {
    const QHeaderView& headings = *table.horizontalHeader();
    const int margin = table.style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, &headings);
    static const QRegularExpression date("^[0-9]+/[0-9]+/[0-9]+");
    for (int column = 0; column < table.model()->columnCount(); ++column) {
      if (table.isColumnHidden(column)) continue;
      const QString heading = table.model()->headerData(column, Qt::Horizontal).toString();
      if (headings.fontMetrics().horizontalAdvance(heading) + 2 * margin > table.columnWidth(column))
        Find(table, "cuts off the heading \"" + heading.toStdString() + "\"");
      constexpr int kRows = 60;
      for (int row = 0; row < std::min(kRows, table.model()->rowCount()); ++row) {
        const QString text = table.model()->index(row, column).data().toString();
        if (!date.match(text).hasMatch()) continue;
        if (table.fontMetrics().horizontalAdvance(text) + 2 * margin <= table.columnWidth(column)) continue;
        Find(table, "cuts off the date \"" + text.toStdString() + "\"");
        break;
      }
    }
    if (table.viewport()->height() < table.verticalHeader()->defaultSectionSize())
      Find(table, "shows no row");
  }

  QWidget& window_;
  std::vector<std::string> found_;
};

}  // namespace

std::vector<std::string> Inspect(QWidget& window) { return Inspection(window).Run(); }

}  // namespace shots
