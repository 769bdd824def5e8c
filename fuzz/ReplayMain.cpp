#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool ReplayFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  if (!file.is_open() || file.bad()) {
    std::fprintf(stderr, "%s: cannot be read\n", path.string().c_str());
    return false;
  }
  // Printed first, so that the last line before a crash names the input.
  std::printf("%s (%zu bytes)\n", path.string().c_str(), bytes.size());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

// Runs every file of the folders given through the target. A folder that is missing or holds no
// file fails: it would look like a test that passed.
int main(int argc, char** argv) {
  bool allRead = argc > 1;
  for (int i = 1; i < argc; ++i) {
    std::error_code error;
    std::size_t files = 0;
    for (std::filesystem::directory_iterator entry(argv[i], error), end; !error && entry != end;
         entry.increment(error)) {
      if (!entry->is_regular_file()) continue;
      ++files;
      allRead = ReplayFile(entry->path()) && allRead;
    }
    if (error || files == 0) {
      std::fprintf(stderr, "%s: %s\n", argv[i],
                   error ? error.message().c_str() : "holds no file to replay");
      allRead = false;
    }
  }
  if (argc < 2) std::fprintf(stderr, "usage: %s CORPUS_FOLDER...\n", argv[0]);
  return allRead ? 0 : 1;
}
