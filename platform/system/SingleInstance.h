// One running copy of the program for each user and each file of settings.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace sys {

/// The claim of being the first copy, which lasts as long as this object; the system drops it when the
/// process dies.
class SingleInstance {
 public:
  /// Null if another process has the claim. If this machine cannot keep claims, the result has none, and
  /// every copy counts as the first.
  static std::unique_ptr<SingleInstance> Claim();
  /// Asks the first copy to come forward. False if it has not confirmed within three seconds that it has: a
  /// copy that is ending or hangs does not answer.
  static bool CallFirstForward();

  ~SingleInstance();
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  /// Becomes readable when another copy has called; -1 if none can.
  int Descriptor() const { return socket_; }
  /// Takes one call; false if none is waiting. `token` is what the desktop gave to the caller so that the
  /// resulting window may come to the front; it may be empty.
  bool TakeCall(std::string& token);
  /// Confirms to all callers that this copy has come forward.
  void Answer();
  /// Whether this claim belongs to the present user and file of settings.
  bool IsCurrent() const;

 private:
  SingleInstance(std::string name, int lock, int socket);

  std::string name_;
  int lock_;
  int socket_;
  std::vector<std::string> callers_;  ///< the addresses of callers that wait for an answer
};

}  // namespace sys
