#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace test {

struct Outcome {
  int code = -1;  ///< exit code, or -signal
  std::string out;
  std::string error;
};

/// A program that runs as a child of the test, with pipes and files for its standard streams. After a minute
/// it is killed.
class Program {
 public:
  /// `command` is the program's path and its arguments; `input` is its whole standard input.
  explicit Program(const std::vector<std::string>& command, const std::string& input = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  /// Waits until the program has written this to standard error; false when the time is over.
  bool WaitForError(const std::string& part) const;
  void Signal(int signal) const;
  bool Running() const;
  /// Waits for the end and returns the outcome.
  Outcome Join();

 private:
  pid_t pid_ = -1;
  int out_ = -1;
  int error_ = -1;
};

/// A program that runs at a terminal of its own.
class TerminalProgram {
 public:
  explicit TerminalProgram(const std::vector<std::string>& command);
  ~TerminalProgram();
  TerminalProgram(const TerminalProgram&) = delete;
  TerminalProgram& operator=(const TerminalProgram&) = delete;

  /// Reads until the screen has shown this; false if the program ends or the time is over before.
  bool WaitFor(const std::string& part);
  /// Whether the terminal echoes typed characters.
  bool Echoes() const;
  void Type(const std::string& text) const;
  /// Waits for the end; returns the exit code and all that the screen has shown.
  Outcome Join();

 private:
  bool ReadSome(int milliseconds);

  pid_t pid_ = -1;
  int terminal_ = -1;
  std::string shown_;
};

}  // namespace test
