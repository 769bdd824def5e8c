#pragma once

#include <memory>

#include "platform/Desktop.h"

struct ca_context;

namespace wattlark {

/// The desktop of the user's session: sounds through libcanberra, addresses through the default
/// browser.
class QtDesktop final : public Desktop {
 public:
  QtDesktop();
  ~QtDesktop() override;

  /// Without a sound system nothing is played either.
  void PlayWave(const std::string& file) override;
  /// Opens addresses of the web (http, https) alone.
  bool OpenURL(const std::string& address) override;

 private:
  struct Destroy {
    void operator()(ca_context* sounds) const;
  };

  std::unique_ptr<ca_context, Destroy> sounds_;  ///< null until the first sound
};

}  // namespace wattlark
