#include "services/Certificate.h"

#include <QProcess>
#include <stdexcept>

namespace wattlark {

Certificate::Certificate(const std::string& folder)
    : file(folder + "/certificate.pem"), keyFile(folder + "/key.pem") {
  QProcess openssl;
  openssl.start("openssl",
                {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
                 "-days", "2", "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
                 "-keyout", QString::fromStdString(keyFile), "-out", QString::fromStdString(file)});
  if (!openssl.waitForFinished() || openssl.exitCode() != 0) {
    throw std::runtime_error("openssl: " + openssl.readAllStandardError().toStdString());
  }
}

}  // namespace wattlark
