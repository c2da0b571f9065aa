#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace test {

/// A real second process, forked from the test before it has any data file open. It runs `body` and ends; Say
/// and Hear keep the two in step. The destructor kills the process if it still runs.
///
/// Fork only while this process has no data file open: the child would share its locks.
class SecondProcess {
 public:
  /// Talks to the test from the child.
  class Channel {
   public:
    Channel(int in, int out) : in_(in), out_(out) {}
    /// Sends a line to the other side.
    void Say(const std::string& line);
    /// Returns the next line from the other side; after 30 seconds without one, ends the process with an
    /// error.
    std::string Hear();

   private:
    int in_;
    int out_;
    std::string pending_;
  };

  explicit SecondProcess(std::function<void(Channel&)> body);
  ~SecondProcess();
  SecondProcess(const SecondProcess&) = delete;
  SecondProcess& operator=(const SecondProcess&) = delete;

  Channel& Talk() { return channel_; }
  /// Sends SIGKILL and waits for the end.
  void Kill();
  /// Waits for the child's end; returns its exit code, or -signal.
  int Join();
  pid_t Pid() const { return pid_; }

 private:
  pid_t pid_ = -1;
  Channel channel_;
};

}  // namespace test
