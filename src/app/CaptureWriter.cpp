#include "app/CaptureWriter.h"

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace wattlark {

CaptureWriter::CaptureWriter(const std::string& file) : file_(file) {
  namespace fs = std::filesystem;
  std::error_code ignored;
  const bool isNew = !fs::exists(file, ignored);
  errno = 0;
  stream_.open(file, std::ios::binary | std::ios::app);
  if (!stream_) {
    throw std::runtime_error("Cannot record to " + file + ": " +
                             std::generic_category().message(errno != 0 ? errno : EIO));
  }
  if (isNew) fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, ignored);
}

void CaptureWriter::WriteRead(DateTime now, std::uint32_t ticks,
                              std::span<const std::uint8_t> bytes) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string event = "rx ";
  event.reserve(event.size() + 2 * bytes.size());
  for (const std::uint8_t byte : bytes) {
    event += kDigits[byte >> 4];
    event += kDigits[byte & 0x0F];
  }
  WriteLine(now, ticks, event);
}

void CaptureWriter::WriteTick(DateTime now, std::uint32_t ticks) {
  WriteLine(now, ticks, "tick");
}

void CaptureWriter::WriteLine(DateTime now, std::uint32_t ticks, const std::string& event) {
  stream_ << now.ToIso() << ' ' << ticks << ' ' << event << '\n' << std::flush;
  if (!stream_)
    throw std::runtime_error("Cannot record to " + file_ + ": the line was not written");
}

}  // namespace wattlark
