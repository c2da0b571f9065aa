#include "windows/AuditLine.h"

#include <QGridLayout>

#include "platform/controls/Layout.h"

namespace dw {

QLayout* AuditLines(std::deque<ui::BoundLabel>& labels) {
  auto* audit = new QGridLayout;
  const char* const prompts[] = {"Date Created:", "Last Updated:"};
  for (int row = 0; row < 2; ++row) {
    const std::size_t who = 2 * static_cast<std::size_t>(row);
    audit->addWidget(ui::Prompt(prompts[row], labels[who + 1]), row, 0);
    audit->addWidget(&labels[who + 1], row, 1);
    audit->addWidget(&labels[who], row, 2);
  }
  audit->setColumnMinimumWidth(1, ui::DateTimeWidth(labels[0]));
  audit->setColumnStretch(2, 1);
  audit->setHorizontalSpacing(12);
  return audit;
}

}  // namespace dw
