#include "shell/forms/TechSupport.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "data/BrackenfelGlobals.h"
#include "platform/controls/Layout.h"
#include "shell/forms/AppIcon.h"
#include "shell/forms/Supplier.h"

namespace dw {
namespace {

constexpr int kPictureSize = 48;

}  // namespace

TechSupport::TechSupport() : Form("TechSupport") {
  setWindowTitle("Technical Support");
  auto* picture = new QLabel;
  picture->setPixmap(ApplicationIcon().pixmap(QSize(kPictureSize, kPictureSize), devicePixelRatioF()));
  introduction.setObjectName("lblPrompt");
  introduction.setTextFormat(Qt::PlainText);
  introduction.setText(
      "If the help pages do not answer your question, ask your System\n"
      "Administrator first, then your supplier:");
  okButton.setObjectName("OKButton");

  auto* facts = new QGridLayout;
  facts->setHorizontalSpacing(14);
  facts->setVerticalSpacing(6);
  facts->setColumnStretch(1, 1);
  const auto add = [&](const char* prompt, const QString& text) {
    auto* value = new QLabel(text);
    value->setTextFormat(Qt::PlainText);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    const int row = facts->rowCount();
    facts->addWidget(ui::Prompt(prompt, *value), row, 0, Qt::AlignTop);
    facts->addWidget(value, row, 1);
  };
  add("Address:", QString(supplier::kName) + '\n' + supplier::kAddress);
  add("Telephone:", supplier::kTelephone);
  add("Fax:", supplier::kFax);
  add("E-mail:", supplier::kMail);
  add("Hours:", supplier::kHours);
  // The supplier asks for the version first.
  add("Your version:", QString::fromStdString(AppVersion));

  auto* column = new QVBoxLayout;
  column->setSpacing(12);
  column->addWidget(&introduction);
  column->addLayout(facts);
  auto* row = new QHBoxLayout;
  row->setSpacing(18);
  row->addWidget(picture, 0, Qt::AlignTop);
  row->addLayout(column, 1);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(18, 16, 18, 14);
  all->addLayout(row, 1);
  all->addSpacing(12);
  all->addLayout(ui::ButtonRow({&okButton}));

  ui::OnClick(okButton, [this] { Unload(); });
  SetDefault(&okButton);
  SetCancel(&okButton);
  // The values can be selected with the keyboard, but the button gets the focus first.
  okButton.setFocus();
}

}  // namespace dw
