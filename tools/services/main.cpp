#include <QTemporaryDir>
#include <csignal>
#include <iostream>
#include <optional>
#include <string>

#include "services/Services.h"

// Prints the address of the services, then a line for every request, until it is told to stop.
int main(int argc, char** argv) {
  using namespace wattlark;
  const std::string wanted = argc > 1 ? argv[1] : "right";
  const bool isSafe = argc > 2 && argv[2] == std::string("https");
  const BehaviourName* found = nullptr;
  std::string names;
  for (const BehaviourName& known : BehaviourNames()) {
    if (known.name == wanted) found = &known;
    names += std::string("|") + known.name;
  }
  if (found == nullptr || argc > 3 || (argc == 3 && !isSafe)) {
    std::cerr << "Usage: wattlark-services [" << names.substr(1) << "] [https]\n";
    return 2;
  }
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGINT);
  sigaddset(&ending, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);
  try {
    const QTemporaryDir folder;
    std::optional<Certificate> certificate;
    if (isSafe) certificate.emplace(folder.path().toStdString());
    Services services(certificate ? &*certificate : nullptr);
    services.Behave(found->behaviour);
    services.onRequest = [](const ServiceRequest& request) {
      const std::string result = request.problem.empty() ? "taken" : request.problem;
      std::cout << (request.target + ": " + result + "\n") << std::flush;
    };
    std::cout << services.URL("") << std::endl;
    int signal = 0;
    sigwait(&ending, &signal);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
