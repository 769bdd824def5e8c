#include "platform/qtwidgets/QtDesktop.h"

#include <canberra.h>

#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace wattlark {

QtDesktop::QtDesktop() = default;

QtDesktop::~QtDesktop() = default;

void QtDesktop::Destroy::operator()(ca_context* sounds) const {
  ca_context_destroy(sounds);
}

void QtDesktop::PlayWave(const std::string& file) {
  // The library would look for a file that is missing among the themes' sounds.
  if (!QFileInfo(QFile::decodeName(file.c_str())).isFile()) return;
  if (sounds_ == nullptr) {
    ca_context* created = nullptr;
    if (ca_context_create(&created) != CA_SUCCESS) return;
    sounds_.reset(created);
    ca_context_change_props(created, CA_PROP_APPLICATION_NAME, "Wattlark", nullptr);
  }
  // A sound that cannot be played is no reason to disturb: the notice is still seen.
  ca_context_play(sounds_.get(), 0, CA_PROP_MEDIA_FILENAME, file.c_str(), CA_PROP_MEDIA_ROLE,
                  "event", nullptr);
}

bool QtDesktop::OpenURL(const std::string& address) {
  const QUrl url(QString::fromStdString(address), QUrl::StrictMode);
  const bool isWeb = url.scheme() == "http" || url.scheme() == "https";
  return url.isValid() && isWeb && !url.host().isEmpty() && QDesktopServices::openUrl(url);
}

}  // namespace wattlark
