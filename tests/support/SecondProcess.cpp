#include "support/SecondProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>

namespace test {

void SecondProcess::Channel::Say(const std::string& line) {
  const std::string text = line + "\n";
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t n = write(out_, text.data() + done, text.size() - done);
    if (n <= 0) throw std::runtime_error("the other process is gone");
    done += static_cast<std::size_t>(n);
  }
}

std::string SecondProcess::Channel::Hear() {
  for (;;) {
    const auto end = pending_.find('\n');
    if (end != std::string::npos) {
      std::string line = pending_.substr(0, end);
      pending_.erase(0, end + 1);
      return line;
    }
    pollfd p{in_, POLLIN, 0};
    if (poll(&p, 1, 30000) <= 0) throw std::runtime_error("nothing heard from the other process");
    char buffer[512];
    const ssize_t n = read(in_, buffer, sizeof buffer);
    if (n <= 0) throw std::runtime_error("the other process has ended");
    pending_.append(buffer, static_cast<std::size_t>(n));
  }
}

SecondProcess::SecondProcess(std::function<void(Channel&)> body) : channel_(-1, -1) {
  int down[2];
  int up[2];
  if (pipe2(down, O_CLOEXEC) != 0 || pipe2(up, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  signal(SIGPIPE, SIG_IGN);
  std::fflush(nullptr);
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("no second process");
  if (pid_ == 0) {
    close(down[1]);
    close(up[0]);
    int code = 0;
    try {
      Channel channel(down[0], up[1]);
      body(channel);
    } catch (const std::exception& e) {
      std::fprintf(stderr, "second process: %s\n", e.what());
      code = 99;
    }
    std::fflush(nullptr);
    _exit(code);
  }
  close(down[0]);
  close(up[1]);
  channel_ = Channel(up[0], down[1]);
}

SecondProcess::~SecondProcess() { Kill(); }

void SecondProcess::Kill() {
  if (pid_ <= 0) return;
  kill(pid_, SIGKILL);
  Join();
}

int SecondProcess::Join() {
  if (pid_ <= 0) return -1;
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace test
