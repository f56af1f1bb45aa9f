#pragma once

#include <optional>
#include <string>

namespace orvo {

/// Tells when an interface is taken down and brought up again: a capture of it goes on through that, and only gets no
/// packets meanwhile. Takes no privileges.
class LinkState {
 public:
  /// Of the interface of this name; what is none ("any", or an empty name) never changes.
  explicit LinkState(const std::string& name);
  LinkState(const LinkState&) = delete;
  LinkState& operator=(const LinkState&) = delete;
  ~LinkState();

  /// Becomes readable when Change is to be asked; -1 when there is nothing to wait for.
  int descriptor() const { return descriptor_; }
  /// Whether it is up now, if that has changed since the last call. One that is gone counts as unchanged: its capture
  /// ends by itself.
  std::optional<bool> Change();

 private:
  std::optional<bool> IsUp() const;

  std::string name_;
  int descriptor_ = -1;
  bool up_ = true;
};

}  // namespace orvo
