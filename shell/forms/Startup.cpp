#include "shell/forms/Startup.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "data/BrackenfelGlobals.h"
#include "data/Catalogue.h"
#include "platform/controls/Layout.h"
#include "shell/forms/AppIcon.h"
#include "shell/forms/CloseChildForm.h"
#include "shell/forms/Supplier.h"
#include "shell/forms/mnuDW.h"

namespace dw {
namespace {

constexpr int kPictureSize = 96;

QFrame* Line() {
  auto* line = new QFrame;
  line->setFrameShape(QFrame::HLine);
  line->setFrameShadow(QFrame::Sunken);
  return line;
}

}  // namespace

Startup::Startup() : Form("Startup") {
  setWindowTitle("About Drovewright");
  NameLabels();
  lblPrompt[0].setText("Drovewright");
  lblPrompt[1].setText("Brackenfel for Windows");
  lblPrompt[2].setText(supplier::kName);
  lblPrompt[3].setText(supplier::kAddress);
  OKButton.setObjectName("OKButton");
  LayOut();
  ui::OnClick(OKButton, [this] { Unload(); });
  SetDefault(&OKButton);
  SetCancel(&OKButton);
  // The window can be closed only by its button, whose checks must run.
  RemoveCloseCommand();
}

void Startup::NameLabels() {
  const auto name = [](QLabel& label, const QString& objectName) {
    label.setObjectName(objectName);
    label.setTextFormat(Qt::PlainText);
  };
  name(VersionLabel, "VersionLabel");
  name(lblCurrentUser, "lblCurrentUser");
  name(Label12, "Label12");
  name(lblStatus, "lblStatus");
  for (std::size_t i = 0; i < lblOrganisation.size(); ++i)
    name(lblOrganisation[i], "lblOrganisation" + QString::number(i));
  for (std::size_t i = 0; i < lblPrompt.size(); ++i) name(lblPrompt[i], "lblPrompt" + QString::number(i));
  for (QLabel* label : {&VersionLabel, &lblCurrentUser, &Label12})
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void Startup::LayOut() {
  auto* picture = new QLabel;
  picture->setPixmap(ApplicationIcon().pixmap(QSize(kPictureSize, kPictureSize), devicePixelRatioF()));
  QFont title = font();
  title.setPointSizeF(title.pointSizeF() * 2);
  title.setBold(true);
  lblPrompt[0].setFont(title);
  QFont strong = font();
  strong.setBold(true);
  lblOrganisation[0].setFont(strong);

  auto* product = new QVBoxLayout;
  product->setSpacing(3);
  product->addWidget(&lblPrompt[0]);
  product->addWidget(&lblPrompt[1]);
  product->addWidget(&VersionLabel);
  product->addSpacing(8);
  product->addWidget(&lblPrompt[2]);
  product->addWidget(&lblPrompt[3]);
  product->addStretch(1);
  auto* top = new QHBoxLayout;
  top->setSpacing(20);
  top->addWidget(picture, 0, Qt::AlignTop);
  top->addLayout(product, 1);

  auto* facts = new QGridLayout;
  facts->setHorizontalSpacing(12);
  facts->setVerticalSpacing(5);
  facts->setColumnStretch(1, 1);
  int row = 0;
  for (QLabel& line : lblOrganisation) facts->addWidget(&line, row++, 0, 1, 2);
  facts->setRowMinimumHeight(row++, 6);
  facts->addWidget(ui::Prompt("Date Installed", Label12), row, 0);
  facts->addWidget(&Label12, row++, 1);
  facts->addWidget(ui::Prompt("Current User:", lblCurrentUser), row, 0);
  facts->addWidget(&lblCurrentUser, row++, 1);

  auto* bottom = new QHBoxLayout;
  bottom->addWidget(&lblStatus, 1);
  bottom->addWidget(&OKButton);

  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(20, 18, 20, 14);
  all->setSpacing(12);
  all->addLayout(top);
  all->addWidget(Line());
  all->addLayout(facts, 1);
  all->addWidget(Line());
  all->addLayout(bottom);
  // Room for the longest names that the file can have, and for the messages of the checks.
  resize(fontMetrics().averageCharWidth() * 78, fontMetrics().height() * 24);
}

void Startup::OnActivate() {
  if (!Loaded) Fill();
}

void Startup::Fill() {
  CompleteMainFile();
  const AboutFacts facts = LoadAboutBox();
  lblCurrentUser.setText(QString::fromStdString(CurrentUserName));
  for (std::size_t i = 0; i < lblOrganisation.size(); ++i)
    lblOrganisation[i].setText(QString::fromStdString(facts.organisation[i]));
  Label12.setText(QString::fromStdString(facts.dateInstalled));
  VersionLabel.setText("Version " + QString::fromStdString(AppVersion));
  Loaded = true;
  OKButton.setFocus();
}

void Startup::OnUnload() {
  if (Aborted || ClosingAllForms()) return;
  Loaded = false;
  auto& menu = ui::The<mnuDW>();
  menu.LoadForm();
  // The menu may begin with a question, and this window must be gone by then.
  hide();
  menu.ShowForm();
}

}  // namespace dw
