#include "platform/controls/Layout.h"

#include <QFontMetrics>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStyle>
#include <algorithm>

namespace ui {
namespace {

/// The name that a screen reader speaks: the prompt without its access key and its colon.
QString SpokenName(const std::string& prompt) {
  QString name = QString::fromStdString(prompt);
  name.remove('&');
  while (name.endsWith(':') || name.endsWith(' ')) name.chop(1);
  return name;
}

}  // namespace

QLabel* Prompt(const std::string& text, QWidget& field) {
  auto* label = new QLabel(QString::fromStdString(text));
  label->setBuddy(&field);
  // Screen readers speak a label's text as its name; another name would hide the value.
  if (qobject_cast<QLabel*>(&field))
    field.setAccessibleDescription(SpokenName(text));
  else if (field.accessibleName().isEmpty())
    field.setAccessibleName(SpokenName(text));
  return label;
}

QLabel* Caption(const std::string& text) {
  auto* label = new QLabel(QString::fromStdString(text));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

FieldRows::FieldRows() {
  setColumnStretch(1, 1);
  setHorizontalSpacing(10);
}

void FieldRows::Row(const std::string& prompt, std::initializer_list<QWidget*> fields) {
  const int row = rowCount();
  addWidget(Prompt(prompt, **fields.begin()), row, 0);
  setRowMinimumHeight(row, FieldHeight(**fields.begin()));
  // The space that a field of fixed width leaves goes to its right, never to the prompts.
  auto* side = new QHBoxLayout;
  const int share = fields.size() == 1 ? 1 : 0;
  for (QWidget* field : fields) side->addWidget(field, share);
  side->addStretch(0);
  addLayout(side, row, 1);
}

void FieldRows::Whole(QWidget& field) { addWidget(&field, rowCount(), 0, 1, 2); }

QGroupBox* Group(const std::string& title, QLayout* content) {
  auto* group = new QGroupBox(QString::fromStdString(title));
  group->setLayout(content);
  return group;
}

QHBoxLayout* ButtonRow(std::initializer_list<QWidget*> buttons) {
  auto* row = new QHBoxLayout;
  row->addStretch(1);
  for (QWidget* button : buttons) row->addWidget(button);
  return row;
}

int FieldHeight(const QWidget& field) {
  QLineEdit measured;
  measured.setFont(field.font());
  return measured.sizeHint().height();
}

int DateTimeWidth(const QWidget& field) {
  const QFontMetrics metrics(field.font());
  return std::max(metrics.horizontalAdvance("10/28/2008 10:08:08 AM"),
                  metrics.horizontalAdvance("10/28/2008 10:08:08 PM")) +
         metrics.averageCharWidth();
}

void SetWidth(QWidget& field, int characters) {
  const QFontMetrics metrics(field.font());
  const int letters = metrics.averageCharWidth() * (characters + 3);
  // Digits may be wider than the average, and the frame takes some room.
  const int frame = 2 * field.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, &field) + 6;
  field.setFixedWidth(std::max(letters, metrics.horizontalAdvance('0') * characters + frame));
}

void TabOrder(std::initializer_list<QWidget*> fields) {
  QWidget* earlier = nullptr;
  for (QWidget* field : fields) {
    if (earlier) QWidget::setTabOrder(earlier, field);
    earlier = field;
  }
}

}  // namespace ui
