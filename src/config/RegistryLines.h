#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace wattlark {

/// The lines of a registry text: UTF-16LE, told by its byte order mark or its first character, or
/// UTF-8 with or without a mark; each line ends with CR LF or LF.
class RegistryLines {
 public:
  enum class Result { Line, End, Bad };

  /// A line or value of more characters than this is refused, so that no stream can fill the memory
  /// with one.
  static constexpr std::size_t kLongest = std::size_t{1} << 26;

  /// `input` must outlive this object.
  explicit RegistryLines(std::istream& input);

  /// Reads the next line, without its line end. A bad one ends the reading; `Problem` says why.
  Result Next(std::u16string& line);
  /// The line end of the last line; empty where the text ends without one.
  std::u16string_view LineEnd() const { return lineEnd_; }
  /// The number of the last line, from 1.
  std::size_t Number() const { return number_; }
  const std::string& Problem() const { return problem_; }

 private:
  bool Fill(std::size_t wanted);
  void DetectEncoding();
  bool ReadBytes(std::string& line);
  bool ReadUnits(std::u16string& line);
  Result Refuse(const char* problem);

  std::istream& input_;
  std::vector<char> block_;
  std::size_t position_ = 0;
  bool isUtf16_ = false;
  std::u16string_view lineEnd_;
  std::size_t number_ = 0;
  std::string problem_;
};

}  // namespace wattlark
