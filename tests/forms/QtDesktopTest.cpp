#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QObject>
#include <QUrl>
#include <vector>

#include "platform/qtwidgets/QtDesktop.h"

namespace wattlark {
namespace {

// Stands in for the browser, and for whatever opens other schemes.
class Opener : public QObject {
  Q_OBJECT

 public:
  Opener() {
    for (const char* scheme : kSchemes) QDesktopServices::setUrlHandler(scheme, this, "Open");
  }
  ~Opener() override {
    for (const char* scheme : kSchemes) QDesktopServices::unsetUrlHandler(scheme);
  }

  std::vector<std::string> opened;

 public slots:
  void Open(const QUrl& url) { opened.push_back(url.toString().toStdString()); }

 private:
  static constexpr const char* kSchemes[] = {"http", "https", "file", "mailto", "smb"};
};

TEST(OpenURL, OpensTheWebAlone) {
  Opener opener;
  QtDesktop desktop;
  const std::vector<std::string> opened = {"https://example.org/help?a=1#b", "http://example.org"};
  for (const std::string& address : opened) EXPECT_TRUE(desktop.OpenURL(address)) << address;
  for (const char* address :
       {"", "example.org", "https://", "https:///etc/passwd", "file:///etc/passwd", "/etc/passwd",
        "mailto:a@example.org", "smb://example.org/a", "https://example.org/a b",
        "-https://example.org"}) {
    EXPECT_FALSE(desktop.OpenURL(address)) << address;
  }
  EXPECT_EQ(opener.opened, opened);
}

}  // namespace
}  // namespace wattlark

#include "QtDesktopTest.moc"
