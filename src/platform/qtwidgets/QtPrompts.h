#pragma once

#include <QString>
#include <QWidget>
#include <functional>

#include "platform/Prompts.h"

namespace wattlark {

/// Message boxes and file choosers over the window that is active. Texts are shown as they are:
/// what looks like mark-up stays text. Of a very long text the box shows the start, and all of it
/// under its button for details.
class QtPrompts final : public Prompts {
 public:
  PromptAnswer Ask(const PromptMessage& message) override;
  std::optional<std::string> ChooseSaveFile(const SaveFileQuestion& question) override;
  bool SignIn(const std::string& caption, std::string& userName, std::string& password) override;
  UpdateAnswer OfferUpdate(const UpdateOffer& offer) override;

  /// Shows the dialog that asks for credentials, over `owner`; without one nobody is asked.
  std::function<bool(const std::string& caption, std::string& userName, std::string& password,
                     QWidget* owner)>
      signIn;
  /// Shows the dialog that offers an update, over `owner`; without one nothing is offered.
  std::function<UpdateAnswer(const UpdateOffer& offer, QWidget* owner)> offerUpdate;
};

/// The text of a message for a box: its line ends as LF, and words too long for a line given places
/// to break.
QString BoxText(const std::string& text);

}  // namespace wattlark
