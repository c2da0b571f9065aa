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
      instructions(
          ui::Caption("This option lets you post all the transactions on file and optionally rebuilds the "
                      "asset costs tables.")),
      clearFirst(new QCheckBox("Clear First?")),
      status(new QLabel),
      progress(new QProgressBar),
      proceedButton(new QPushButton("&Proceed")),
      cancelButton(new QPushButton("Cancel")) {
  setWindowTitle("Post Transactions ");
  instructions->setObjectName("Label1");
  clearFirst->setObjectName("chkClear");
  status->setObjectName("lblStatus");
  progress->setObjectName("pnlProgress");
  progress->setAccessibleName("Progress");
  proceedButton->setObjectName("cmdProceed");
  cancelButton->setObjectName("cmdCancel");

  // The bar keeps its room while it is hidden, so that nothing moves when the run begins.
  QSizePolicy policy = progress->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  progress->setSizePolicy(policy);
  progress->setRange(0, 100);
  progress->hide();

  instructions->setMinimumWidth(fontMetrics().averageCharWidth() * 60);
  auto* column = new QVBoxLayout(this);
  column->addWidget(instructions);
  column->addWidget(clearFirst);
  column->addWidget(status);
  column->addWidget(progress);
  column->addStretch(1);
  column->addLayout(ui::ButtonRow({proceedButton, cancelButton}));

  ui::OnClick(*proceedButton, [this] { Proceed(); });
  ui::OnClick(*cancelButton, [this] { Unload(); });
  SetDefault(proceedButton);
  SetCancel(cancelButton);
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
    form_->progress->hide();
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  PostingProgress Progress() const {
    return {.status =
                [this](const std::string& text) {
                  if (!form_) return;
                  form_->status->setText(QString::fromStdString(text));
                  form_->status->repaint();
                },
            .percent =
                [this](int percent) {
                  if (!form_) return;
                  form_->progress->setVisible(true);
                  form_->progress->setValue(percent);
                }};
  }

 private:
  void SetRunning(bool running) {
    form_->running_ = running;
    form_->proceedButton->setEnabled(!running);
    form_->cancelButton->setEnabled(!running);
    form_->clearFirst->setEnabled(!running);
  }

  QPointer<frmRePost> form_;
};

void frmRePost::Proceed() {
  const QPointer<frmRePost> form(this);
  {
    const Run run(*this);
    try {
      RunPosting(clearFirst->isChecked(), run.Progress());
    } catch (const ClearingRefused& refused) {
      screen::MessageBox("Error #" + std::to_string(refused.Number()) + "\r\r" + refused.what(),
                         screen::Icon::Critical);
    }
  }
  if (form) form->Unload();
}

}  // namespace dw
