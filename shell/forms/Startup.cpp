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
  product[0].setText("Drovewright");
  product[1].setText("Brackenfel for Windows");
  product[2].setText(supplier::kName);
  product[3].setText(supplier::kAddress);
  okButton.setObjectName("OKButton");
  LayOut();
  ui::OnClick(okButton, [this] { Unload(); });
  SetDefault(&okButton);
  SetCancel(&okButton);
  // The window can be closed only by its button, whose checks must run.
  RemoveCloseCommand();
}

void Startup::NameLabels() {
  const auto name = [](QLabel& label, const QString& objectName) {
    label.setObjectName(objectName);
    label.setTextFormat(Qt::PlainText);
  };
  name(version, "VersionLabel");
  name(currentUser, "lblCurrentUser");
  name(dateInstalled, "Label12");
  name(status, "lblStatus");
  for (std::size_t i = 0; i < organization.size(); ++i)
    name(organization[i], "lblOrganisation" + QString::number(i));
  for (std::size_t i = 0; i < product.size(); ++i) name(product[i], "lblPrompt" + QString::number(i));
  for (QLabel* label : {&version, &currentUser, &dateInstalled})
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void Startup::LayOut() {
  auto* picture = new QLabel;
  picture->setPixmap(ApplicationIcon().pixmap(QSize(kPictureSize, kPictureSize), devicePixelRatioF()));
  QFont title = font();
  title.setPointSizeF(title.pointSizeF() * 2);
  title.setBold(true);
  product[0].setFont(title);
  QFont strong = font();
  strong.setBold(true);
  organization[0].setFont(strong);

  auto* about = new QVBoxLayout;
  about->setSpacing(3);
  about->addWidget(&product[0]);
  about->addWidget(&product[1]);
  about->addWidget(&version);
  about->addSpacing(8);
  about->addWidget(&product[2]);
  about->addWidget(&product[3]);
  about->addStretch(1);
  auto* top = new QHBoxLayout;
  top->setSpacing(20);
  top->addWidget(picture, 0, Qt::AlignTop);
  top->addLayout(about, 1);

  auto* facts = new QGridLayout;
  facts->setHorizontalSpacing(12);
  facts->setVerticalSpacing(5);
  facts->setColumnStretch(1, 1);
  int row = 0;
  for (QLabel& line : organization) facts->addWidget(&line, row++, 0, 1, 2);
  facts->setRowMinimumHeight(row++, 6);
  facts->addWidget(ui::Prompt("Date Installed", dateInstalled), row, 0);
  facts->addWidget(&dateInstalled, row++, 1);
  facts->addWidget(ui::Prompt("Current User:", currentUser), row, 0);
  facts->addWidget(&currentUser, row++, 1);

  auto* bottom = new QHBoxLayout;
  bottom->addWidget(&status, 1);
  bottom->addWidget(&okButton);

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
  currentUser.setText(QString::fromStdString(CurrentUserName));
  for (std::size_t i = 0; i < organization.size(); ++i)
    organization[i].setText(QString::fromStdString(facts.organization[i]));
  dateInstalled.setText(QString::fromStdString(facts.dateInstalled));
  version.setText("Version " + QString::fromStdString(AppVersion));
  Loaded = true;
  okButton.setFocus();
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
