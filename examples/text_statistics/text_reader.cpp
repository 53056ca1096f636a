#include "text_reader.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace text_statistics {

namespace {

bool isWordByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         static_cast<unsigned char>(c) >= 0x80;
}

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

std::optional<std::string> readFile(const std::string& path, std::string& problem) {
  const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) {
    problem = std::strerror(errno);
    return std::nullopt;
  }
  std::string contents;
  std::array<char, 65536> block;
  std::size_t got = 0;
  while ((got = std::fread(block.data(), 1, block.size(), file.get())) > 0) contents.append(block.data(), got);
  // A directory opens like a file; only reading it fails.
  if (std::ferror(file.get()) != 0) {
    problem = std::strerror(errno);
    return std::nullopt;
  }
  return contents;
}

std::string lowerCased(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

std::optional<std::string_view> WordReader::next() {
  std::size_t begin = 0;
  while (begin < rest_.size() && !isWordByte(rest_[begin])) ++begin;
  if (begin == rest_.size()) {
    rest_ = {};
    return std::nullopt;
  }
  const auto belongs = [this](std::size_t at) {
    return isWordByte(rest_[at]) ||
           (rest_[at] == '\'' && at + 1 < rest_.size() && isWordByte(rest_[at - 1]) && isWordByte(rest_[at + 1]));
  };
  std::size_t end = begin + 1;
  while (end < rest_.size() && belongs(end)) ++end;
  word_ = lowerCased(rest_.substr(begin, end - begin));
  rest_.remove_prefix(end);
  return word_;
}

}  // namespace text_statistics
