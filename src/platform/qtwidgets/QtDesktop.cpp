#include "platform/qtwidgets/QtDesktop.h"

#include <canberra.h>

#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QUrl>

namespace wattlark {

namespace {

// The sound library and the seven that it needs would lengthen every start, and most runs play no
// sound: it is loaded with the first one.
struct SoundLibrary {
  decltype(&ca_context_create) create = nullptr;
  decltype(&ca_context_destroy) destroy = nullptr;
  decltype(&ca_context_change_props) changeProps = nullptr;
  decltype(&ca_context_play) play = nullptr;
  bool isLoaded = false;

  static const SoundLibrary& Get() {
    static const SoundLibrary library;
    return library;
  }

 private:
  SoundLibrary() {
    QLibrary file("canberra", 0);
    isLoaded = Resolve(file, "ca_context_create", create) &&
               Resolve(file, "ca_context_destroy", destroy) &&
               Resolve(file, "ca_context_change_props", changeProps) &&
               Resolve(file, "ca_context_play", play);
  }
  template <class Function>
  static bool Resolve(QLibrary& file, const char* name, Function& function) {
    function = reinterpret_cast<Function>(file.resolve(name));
    return function != nullptr;
  }
};

}  // namespace

QtDesktop::QtDesktop() = default;

QtDesktop::~QtDesktop() = default;

void QtDesktop::Destroy::operator()(ca_context* sounds) const {
  SoundLibrary::Get().destroy(sounds);
}

void QtDesktop::PlayWave(const std::string& file) {
  // The library would look for a file that is missing among the themes' sounds.
  if (!QFileInfo(QFile::decodeName(file.c_str())).isFile()) return;
  const SoundLibrary& library = SoundLibrary::Get();
  if (!library.isLoaded) return;
  if (sounds_ == nullptr) {
    ca_context* created = nullptr;
    if (library.create(&created) != CA_SUCCESS) return;
    sounds_.reset(created);
    library.changeProps(created, CA_PROP_APPLICATION_NAME, "Wattlark", nullptr);
  }
  // A sound that cannot be played is no reason to disturb: the notice is still seen.
  library.play(sounds_.get(), 0, CA_PROP_MEDIA_FILENAME, file.c_str(), CA_PROP_MEDIA_ROLE, "event",
               nullptr);
}

bool QtDesktop::OpenURL(const std::string& address) {
  const QUrl url(QString::fromStdString(address), QUrl::StrictMode);
  const bool isWeb = url.scheme() == "http" || url.scheme() == "https";
  return url.isValid() && isWeb && !url.host().isEmpty() && QDesktopServices::openUrl(url);
}

}  // namespace wattlark
