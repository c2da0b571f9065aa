#include "platform/print/job/PrintJob.h"

#include <utility>

namespace print {
namespace {

struct Engine {
  bool open = false;
  int lastJob = 0;
  int lastText = 0;
  std::map<int, std::unique_ptr<PrintJob>> jobs;
  std::map<int, std::string> texts;
  std::string error;  // of calls without a job
};

Engine& TheEngine() {
  static Engine engine;
  return engine;
}

PrintJob* FindJob(int job) {
  const auto found = TheEngine().jobs.find(job);
  return found == TheEngine().jobs.end() ? nullptr : found->second.get();
}

void CloseWindow(PrintJob& job) {
  const std::shared_ptr<Viewer>& viewer = CurrentViewer();
  if (job.window != 0 && viewer) viewer->Close(job.window);
  job.window = 0;
}

}  // namespace

std::string ArgumentText(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  const auto last = text.find_last_not_of(' ');
  return std::string(text.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

bool OnEngine(const std::function<void()>& call) {
  try {
    TheEngine().error.clear();
    call();
    return true;
  } catch (const std::bad_alloc&) {
    TheEngine().error = "There is not enough memory.";
  } catch (const std::exception& error) {
    TheEngine().error = error.what();
  }
  return false;
}

bool OnJob(int number, const std::function<void(PrintJob&)>& call) {
  PrintJob* job = FindJob(number);
  if (job == nullptr)
    return OnEngine([&] { throw PrintError("There is no print job " + std::to_string(number) + "."); });
  try {
    job->error.clear();
    call(*job);
    return true;
  } catch (const std::bad_alloc&) {
    job->error = "There is not enough memory.";
  } catch (const std::exception& error) {
    job->error = error.what();
  }
  return false;
}

int AddJob(std::unique_ptr<PrintJob> job) {
  Engine& engine = TheEngine();
  if (!engine.open) throw PrintError("The print engine is not open.");
  const int number = ++engine.lastJob;
  job->number = number;
  engine.jobs[number] = std::move(job);
  return number;
}

const std::string* ErrorOf(int number) {
  if (number == 0) return &TheEngine().error;
  const PrintJob* job = FindJob(number);
  return job ? &job->error : nullptr;
}

int KeepText(std::string text) {
  Engine& engine = TheEngine();
  engine.texts[++engine.lastText] = std::move(text);
  return engine.lastText;
}

bool PEGetHandleString(int textHandle, std::string* buffer) {
  return OnEngine([&] {
    Engine& engine = TheEngine();
    const auto found = engine.texts.find(textHandle);
    if (found == engine.texts.end())
      throw PrintError("There is no text with the handle " + std::to_string(textHandle) + ".");
    const std::string text = std::move(found->second);
    engine.texts.erase(found);
    buffer->replace(0, std::min(buffer->size(), text.size()), text, 0, buffer->size());
  });
}

bool PEOpenEngine() {
  return OnEngine([] { TheEngine().open = true; });
}

void PECloseEngine() {
  Engine& engine = TheEngine();
  while (!engine.jobs.empty()) PEClosePrintJob(engine.jobs.begin()->first);
  engine.texts.clear();
  engine.error.clear();
  engine.open = false;
}

bool PEClosePrintJob(int number) {
  return OnJob(number, [&](PrintJob&) {
    Engine& engine = TheEngine();
    std::vector<int> inner;
    for (const auto& [other, job] : engine.jobs)
      if (job->parent == number) inner.push_back(other);
    for (const int other : inner) engine.jobs.erase(other);
    // The job is out of the table before anything is waited for: a window may let events run while it closes.
    const auto found = engine.jobs.find(number);
    std::unique_ptr<PrintJob> job = std::move(found->second);
    engine.jobs.erase(found);
    CloseWindow(*job);
    if (job->run) job->run->Cancel();
  });
}

bool PEGetErrorText(int job, int* textHandle, int* textLength) {
  const std::string* error = ErrorOf(job);
  std::string text = error == nullptr ? "There is no print job " + std::to_string(job) + "." : *error;
  if (text.empty()) text = "No error.";
  *textLength = static_cast<int>(text.size());
  *textHandle = KeepText(std::move(text));
  return error != nullptr;
}

}  // namespace print
