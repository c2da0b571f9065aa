#include "platform/print/view/DesktopMailer.h"

#include <QDir>
#include <QFileDialog>
#include <filesystem>
#include <system_error>

#include "platform/print/PrintError.h"
#include "platform/screen/Screen.h"
#include "platform/system/Machine.h"

namespace print {
namespace {

std::string AskForFile(const std::string& name) {
  return QFileDialog::getSaveFileName(nullptr, "Save the Report As",
                                      QDir::home().filePath(QString::fromStdString(name)),
                                      "Word processor (*.rtf)")
      .toStdString();
}

}  // namespace

std::function<std::string(const std::string&)> DesktopMailer::askForFile = AskForFile;

void DesktopMailer::Send(const std::string& file, const std::string& subject) {
  if (sys::StartMail(file, subject)) return;
  const screen::Answer answer = screen::MessageBox(
      "No mail program on this computer takes the report. Do you want to save it as a file instead?",
      screen::Icon::Question, screen::Buttons::YesNo);
  if (answer != screen::Answer::Yes) return;
  namespace files = std::filesystem;
  const std::string path = askForFile(files::path(file).filename().string());
  if (path.empty()) return;
  std::error_code error;
  files::copy_file(file, path, files::copy_options::overwrite_existing, error);
  if (error) throw PrintError("The report could not be saved to " + path + ": " + error.message() + ".");
}

}  // namespace print
