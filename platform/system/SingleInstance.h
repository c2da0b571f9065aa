// One running copy of the program for each user and each file of settings.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace sys {

/// The claim of being the first copy, held for as long as it lives; the system drops it when the process
/// dies.
class SingleInstance {
 public:
  /// Null when another process holds the claim. Where claims cannot be kept on this machine the result holds
  /// none, and every copy counts as the first.
  static std::unique_ptr<SingleInstance> Claim();
  /// Asks the first copy to come forward. False when it has not said within three seconds that it has: a copy
  /// that is ending or hangs says nothing.
  static bool CallFirstForward();

  ~SingleInstance();
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  /// Becomes readable when another copy has called; -1 where nobody can.
  int Descriptor() const { return socket_; }
  /// Takes one call; false when none is waiting. `token` is what the desktop gave the caller so that the
  /// window it leads to may come to the front; it may be empty.
  bool TakeCall(std::string& token);
  /// Says to all whose calls were taken that this copy has come forward.
  void Answer();
  /// Whether this claim is the one of the present user and file of settings.
  bool IsCurrent() const;

 private:
  SingleInstance(std::string name, int lock, int socket);

  std::string name_;
  int lock_;
  int socket_;
  std::vector<std::string> callers_;  ///< addresses of those who wait for an answer
};

}  // namespace sys
