#include "support/Apart.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>

namespace test {
namespace {

void WriteAll(int to, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t n = write(to, text.data() + done, text.size() - done);
    if (n <= 0) return;
    done += static_cast<std::size_t>(n);
  }
}

}  // namespace

Apart::Apart(const std::function<std::string()>& work) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  std::fflush(nullptr);
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("no second process");
  if (pid_ == 0) {
    close(ends[0]);
    std::string result;
    try {
      result = work();
    } catch (const std::exception& e) {
      result = std::string("threw: ") + e.what();
    }
    WriteAll(ends[1], result);
    _exit(0);
  }
  close(ends[1]);
  pipe_ = ends[0];
}

Apart::Apart(Apart&& other) noexcept : pid_(other.pid_), pipe_(other.pipe_) {
  other.pid_ = -1;
  other.pipe_ = -1;
}

Apart::~Apart() {
  Kill();
  if (pipe_ >= 0) close(pipe_);
}

std::string Apart::Result(int seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  std::string result;
  for (;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd p{pipe_, POLLIN, 0};
    if (left.count() <= 0 || poll(&p, 1, static_cast<int>(left.count())) <= 0) {
      Kill();
      return "hangs";
    }
    char buffer[4096];
    const ssize_t n = read(pipe_, buffer, sizeof buffer);
    if (n <= 0) break;
    result.append(buffer, static_cast<std::size_t>(n));
  }
  if (pid_ <= 0) return result;
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  if (WIFSIGNALED(status)) return "died of signal " + std::to_string(WTERMSIG(status)) + " " + result;
  if (WEXITSTATUS(status) != 0)
    return "ended with code " + std::to_string(WEXITSTATUS(status)) + " " + result;
  return result;
}

bool Apart::Kill() {
  if (pid_ <= 0) return false;
  kill(pid_, SIGKILL);
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

std::string RunApart(const std::function<std::string()>& work, int seconds) {
  return Apart(work).Result(seconds);
}

}  // namespace test
