#include "database/access/transfer/csv.h"

#include <algorithm>
#include <utility>

namespace veltrano::access {

Result<CsvReader> CsvReader::open(const std::filesystem::path& file) {
  if (kindOf(file) == FileKind::folder) {
    return {Failure::missing, "it is a folder"};
  }
  auto opened = File::open(file, Opening::read);
  if (!opened) {
    return opened.status();
  }
  const auto size = opened->size();
  return CsvReader(*std::move(opened), size ? *size : 0);
}

CsvReader::CsvReader(File file, std::uint64_t size)
    : file_(std::move(file)), size_(size), buffer_(std::size_t{1} << 16) {
  more();
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  rest_.remove_prefix(rest_.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
  const std::string_view head = rest_.substr(0, rest_.find_first_of("\r\n"));
  for (const char candidate : {';', '\t'}) {
    if (std::ranges::count(head, candidate) > std::ranges::count(head, separator_)) {
      separator_ = candidate;
    }
  }
}

double CsvReader::done() const {
  return size_ == 0 ? 0 : static_cast<double>(read_) / static_cast<double>(size_);
}

bool CsvReader::more() {
  if (rest_.empty() && status_) {
    const auto count = file_.read(buffer_);
    status_ = count.status();
    rest_ = {buffer_.data(), count ? *count : 0};
    read_ += rest_.size();
  }
  return !rest_.empty();
}

void CsvReader::takePlain(std::string& text) {
  while (more()) {
    const auto* end =
        std::ranges::find_if(rest_, [this](char c) { return c == separator_ || c == '\n' || c == '\r'; });
    const auto length = static_cast<std::size_t>(end - rest_.begin());
    text.append(rest_, 0, length);
    rest_.remove_prefix(length);
    if (!rest_.empty()) {
      return;
    }
  }
}

// After the opening quote. False if there is no closing one.
bool CsvReader::takeQuoted(std::string& text) {
  while (more()) {
    const std::size_t length = std::min(rest_.find('"'), rest_.size());
    text.append(rest_, 0, length);
    line_ += static_cast<std::size_t>(std::ranges::count(rest_.substr(0, length), '\n'));
    rest_.remove_prefix(length);
    if (rest_.empty()) {
      continue;
    }
    rest_.remove_prefix(1);
    if (!more() || rest_.front() != '"') {
      return true;
    }
    text += '"';
    rest_.remove_prefix(1);
  }
  return false;
}

bool CsvReader::next(std::vector<CsvField>& fields) {
  recordLine_ = line_;
  if (!more()) {
    return false;
  }
  std::size_t count = 0;
  for (bool another = true; another; ++count) {
    if (count == fields.size()) {
      fields.emplace_back();
    }
    CsvField& field = fields[count];
    field.text.clear();
    field.quoted = more() && rest_.front() == '"';
    if (field.quoted) {
      rest_.remove_prefix(1);
      if (!takeQuoted(field.text)) {
        status_ = status_ ? Status(Failure::damaged, "a quote is not closed") : status_;
        return false;
      }
    }
    takePlain(field.text);
    another = more() && rest_.front() == separator_;
    rest_.remove_prefix(another ? 1 : 0);
  }
  fields.resize(count);
  for (const char end : {'\r', '\n'}) {
    rest_.remove_prefix(more() && rest_.front() == end ? 1 : 0);
  }
  ++line_;
  return static_cast<bool>(status_);
}

void appendCsv(std::string& target, std::string_view text) {
  const bool plain = !text.empty() && text.find_first_of(",;\t\"\r\n") == std::string_view::npos &&
                     text.front() != ' ' && text.back() != ' ';
  if (plain) {
    target += text;
    return;
  }
  target += '"';
  for (const char c : text) {
    target.append(c == '"' ? 2 : 1, c);
  }
  target += '"';
}

}  // namespace veltrano::access
