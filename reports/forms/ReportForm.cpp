#include "reports/forms/ReportForm.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QEventLoop>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Waits.h"
#include "reports/DWGlobals.h"
#include "reports/PrintCalls.h"
#include "reports/SelectAndSort.h"
#include "reports/forms/frmCriteriaList.h"

namespace dw {
namespace {

constexpr int kTitleWidth = 56;  ///< in characters
/// How often a run looks whether its preview is still open.
constexpr int kLookMilliseconds = 50;

template <class Button>
void SetUp(Button& button, const char* name, const char* caption) {
  button.setObjectName(name);
  button.setText(caption);
}

}  // namespace

ReportForm::ReportForm()
    : Form(kName),
      selectButton(new QPushButton("&Select and Sort")),
      proceedButton(new QPushButton("&Proceed")),
      cancelButton(new QPushButton("Cancel")) {
  RptQueryID = 0;
  setWindowTitle("Report Parameters");
  for (const char* name : {"Text1(0)", "Text1(1)", "Text1(2)", "Text1(3)"}) titleLines.emplace_back(name);
  SetUp(toScreen, "Option1", "Screen");
  SetUp(toPrinter, "Option2", "Printer");
  SetUp(byMail, "Option3", "e-mail");
  SetUp(summaryOnly, "Check1", "Summary Only");
  selectButton->setObjectName("SelectButton");
  proceedButton->setObjectName("ProceedButton");
  cancelButton->setObjectName("CancelButton");
  toScreen.setChecked(true);

  QGroupBox* titles = ui::Group("Report Title Lines", LayOutTitles());
  titles->setObjectName("Frame1");
  QGroupBox* output = ui::Group("&Output To...", LayOutOutput());
  output->setObjectName("Frame2");
  auto* column = new QVBoxLayout(this);
  column->addWidget(titles);
  column->addWidget(output);
  column->addWidget(&summaryOnly);
  column->addStretch(1);
  column->addLayout(ui::ButtonRow({selectButton, proceedButton, cancelButton}));

  ui::OnClick(*selectButton, [this] { Select(); });
  ui::OnClick(*proceedButton, [this] { Proceed(); });
  ui::OnClick(*cancelButton, [this] { Cancel(); });
  SetDefault(proceedButton);
  SetCancel(cancelButton);
}

QLayout* ReportForm::LayOutTitles() {
  auto* rows = new QVBoxLayout;
  int line = 0;
  for (ui::TextBox& title : titleLines) {
    title.setAccessibleName("Title Line " + QString::number(++line));
    title.setMinimumWidth(fontMetrics().averageCharWidth() * kTitleWidth);
    rows->addWidget(&title);
  }
  return rows;
}

QLayout* ReportForm::LayOutOutput() {
  auto* row = new QHBoxLayout;
  for (QRadioButton* option : {&toScreen, &toPrinter, &byMail}) row->addWidget(option);
  row->addStretch(1);
  return row;
}

void ReportForm::OnLoad() {
  setWindowTitle(QString::fromStdString(RptTitle));
  if (!UseAddress || !TitlesFromAddress()) PresetTitles();
  HasSelection = !RptSelection.empty();
  HasSort = !RptSort.empty();
  EngineOpen = Engine().PEOpenEngine();
  if (!EngineOpen) {
    screen::MessageBox("Crystal Reports print engine is not available.");
    Unload();
    return;
  }
  if (RptQueryID != 0 && titleLines[2].Text().empty())
    if (const auto description = DescriptionOf(RptQueryID)) titleLines[2].SetText(*description);
}

bool ReportForm::TitlesFromAddress() {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, DataConnect, false)) return false;
  AdoRecordsetPtr row = AdoOpenRecordset(connection, "SELECT * FROM [Parameters] WHERE [ID] = 1");
  const bool found = row && !row->AtEnd();
  if (found) {
    const char* const columns[] = {"Organization Name", "Address Line 1", "Address Line 2", "Contact Phone"};
    for (std::size_t i = 0; i < titleLines.size(); ++i)
      if (const rt::Value text = row->Get(columns[i]); !text.IsNull()) titleLines[i].SetText(text.AsText());
  }
  CloseObject(row);
  CloseObject(connection);
  return found;
}

void ReportForm::PresetTitles() {
  const std::string* const titles[] = {&Title1, &Title2, &Title3, &Title4};
  for (std::size_t i = 0; i < titleLines.size(); ++i)
    titleLines[i].SetText(!titles[i]->empty() ? *titles[i] : i == 0 ? RptTitle : std::string());
}

void ReportForm::Select() {
  if (HasSelection) {
    screen::MessageBox("You cannot specify your own select criteria.");
    return;
  }
  const QPointer<ReportForm> form(this);
  SetPointer(screen::Pointer::Hourglass);
  auto& definitions = ui::The<frmCriteriaList>();
  definitions.LoadForm();
  definitions.ReportID = RptPrimaryTable;
  definitions.ShowModal();
  if (form) form->SetPointer(screen::Pointer::Normal);
}

ReportOptions ReportForm::Options() const {
  ReportOptions options;
  options.output = toScreen.isChecked()    ? ReportOutput::Screen
                   : toPrinter.isChecked() ? ReportOutput::Printer
                   : byMail.isChecked()    ? ReportOutput::Mail
                                           : ReportOutput::None;
  for (std::size_t i = 0; i < titleLines.size(); ++i) options.titles[i] = titleLines[i].Text();
  options.aux = {Aux1, Aux2, Aux3, Aux4, Aux5, Aux6, Aux7};
  options.summaryOnly = summaryOnly.isChecked();
  options.sectionPageBreak = SectionPageBreak;
  options.a4 = ReportsOnA4();
  const QRect area = screen()->availableGeometry();
  options.window = {area.left(), area.top(), area.width(), area.height()};
  options.parent = winId();
  options.printer = ReportPrinter;
  return options;
}

void ReportForm::Proceed() {
  if (running_) return;
  running_ = true;
  for (QPushButton* button : {selectButton, proceedButton}) {
    button->setEnabled(false);
    button->setToolTip("A report is being made or shown. Close its preview to make another one.");
  }
  starting_ = std::make_unique<screen::Hourglass>();
  const QPointer<ReportForm> form(this);
  ReportOptions options = Options();
  options.whilePreviewed = [form] { return form && form->WaitForPreview(); };
  RunReport(options);
  if (!form) return;
  form->starting_.reset();
  form->running_ = false;
  form->Unload();
}

/// Lets events run for a moment. False if the form is to end, or has ended.
bool ReportForm::WaitForPreview() {
  starting_.reset();
  const QPointer<ReportForm> form(this);
  rt::AboutToWait();
  QTimer moment;
  moment.setSingleShot(true);
  moment.start(kLookMilliseconds);
  QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  return form && form->Loaded() && !form->stopped_;
}

void ReportForm::Cancel() {
  // The run ends at its next look, and the form with it.
  if (running_)
    stopped_ = true;
  else
    Unload();
}

void ReportForm::closeEvent(QCloseEvent* event) {
  if (!running_) {
    Form::closeEvent(event);
    return;
  }
  event->ignore();
  stopped_ = true;
}

void ReportForm::OnUnload() {
  starting_.reset();
  if (EngineOpen) Engine().PECloseEngine();
  EngineOpen = false;
  if (RptQueryID != 0) RemoveTemporaryDefinition(RptQueryID);
}

}  // namespace dw
