#include "costing/forms/frmRePost.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "costing/Posting.h"
#include "platform/controls/Layout.h"
#include "platform/screen/Screen.h"

namespace dw {

frmRePost::frmRePost()
    : Form(kName),
      Label1(ui::Caption("This option lets you post all the transactions on file and optionally rebuilds the "
                         "asset costs tables.")),
      chkClear(new QCheckBox("Clear First?")),
      lblStatus(new QLabel),
      pnlProgress(new QProgressBar),
      cmdProceed(new QPushButton("&Proceed")),
      cmdCancel(new QPushButton("Cancel")) {
  setWindowTitle("Post Transactions ");
  Label1->setObjectName("Label1");
  chkClear->setObjectName("chkClear");
  lblStatus->setObjectName("lblStatus");
  pnlProgress->setObjectName("pnlProgress");
  pnlProgress->setAccessibleName("Progress");
  cmdProceed->setObjectName("cmdProceed");
  cmdCancel->setObjectName("cmdCancel");

  // The bar keeps its room while it is hidden, so that nothing moves when the run begins.
  QSizePolicy policy = pnlProgress->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  pnlProgress->setSizePolicy(policy);
  pnlProgress->setRange(0, 100);
  pnlProgress->hide();

  Label1->setMinimumWidth(fontMetrics().averageCharWidth() * 60);
  auto* column = new QVBoxLayout(this);
  column->addWidget(Label1);
  column->addWidget(chkClear);
  column->addWidget(lblStatus);
  column->addWidget(pnlProgress);
  column->addStretch(1);
  column->addLayout(ui::ButtonRow({cmdProceed, cmdCancel}));

  ui::OnClick(*cmdProceed, [this] { Proceed(); });
  ui::OnClick(*cmdCancel, [this] { Unload(); });
  SetDefault(cmdProceed);
  SetCancel(cmdCancel);
}

void frmRePost::closeEvent(QCloseEvent* event) {
  if (running_)
    event->ignore();
  else
    Form::closeEvent(event);
}

/// The state of the window during a run. The end of the program may destroy the window during the run.
class frmRePost::Run {
 public:
  explicit Run(frmRePost& form) : form_(&form) { SetRunning(true); }
  ~Run() {
    if (!form_) return;
    SetRunning(false);
    form_->pnlProgress->hide();
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  PostingProgress Progress() const {
    return {.status =
                [this](const std::string& text) {
                  if (!form_) return;
                  form_->lblStatus->setText(QString::fromStdString(text));
                  form_->lblStatus->repaint();
                },
            .percent =
                [this](int percent) {
                  if (!form_) return;
                  form_->pnlProgress->setVisible(true);
                  form_->pnlProgress->setValue(percent);
                }};
  }

 private:
  void SetRunning(bool running) {
    form_->running_ = running;
    form_->cmdProceed->setEnabled(!running);
    form_->cmdCancel->setEnabled(!running);
    form_->chkClear->setEnabled(!running);
  }

  QPointer<frmRePost> form_;
};

void frmRePost::Proceed() {
  const QPointer<frmRePost> form(this);
  {
    const Run run(*this);
    try {
      RunPosting(chkClear->isChecked(), run.Progress());
    } catch (const ClearingRefused& refused) {
      screen::MessageBox("Error #" + std::to_string(refused.Number()) + "\r\r" + refused.what(),
                         screen::Icon::Critical);
    }
  }
  if (form) form->Unload();
}

}  // namespace dw
