// The file that an output writes: there when it is whole, or not at all.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace print {

/// Collects an output under a temporary name beside its target and moves it there at the end. Standard output
/// ("-"), devices and pipes get the whole output at the end. Every failure is a PrintError that names the
/// file.
class OutputFile {
 public:
  /// A target that is a symbolic link is followed. Throws if the target is a folder or may not be written.
  explicit OutputFile(const std::string& path);
  /// Without Commit, nothing is left and an earlier file is as it was.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Write(std::string_view bytes);
  /// The number of bytes written so far.
  std::uint64_t Position() const { return flushed_ + buffer_.size(); }
  /// The file that holds the output until Commit, for a library that writes by itself.
  const std::string& TemporaryPath() const { return temporary_; }
  /// Throws the PrintError for an error of the operating system.
  [[noreturn]] void Fail(int error) const;
  /// Moves the output to its target.
  void Commit();

 private:
  void Flush();
  void Pour();

  std::string shown_;   ///< as messages name the target
  std::string target_;  ///< empty: standard output
  std::string temporary_;
  bool replaces_ = false;  ///< whether the temporary file becomes the target
  int fd_ = -1;
  std::string buffer_;
  std::uint64_t flushed_ = 0;
  bool done_ = false;
};

/// "the disk is full" and the like, for an error number of the operating system.
std::string ReasonOf(int error);

}  // namespace print
