#include "database/access/transfer/csv.h"

#include <algorithm>
#include <array>
#include <utility>

namespace veltrano::access {

Result<CsvReader> CsvReader::open(const std::filesystem::path& file) {
  if (kindOf(file) == FileKind::folder) {
    return {Failure::missing, "a folder has this name"};
  }
  auto opened = File::open(file, Opening::read);
  if (!opened) {
    return opened.status();
  }
  const auto size = opened->size();
  CsvReader reader(*std::move(opened), size ? *size : 0);
  const std::string_view head = reader.rest_.substr(0, reader.rest_.find('\n'));
  const bool utf16 = head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF");
  if (utf16 || head.find('\0') != std::string_view::npos) {
    return {Failure::damaged, utf16 ? "the text is not UTF-8 but UTF-16" : "the text is not UTF-8"};
  }
  return reader;
}

CsvReader::CsvReader(File file, std::uint64_t size)
    : file_(std::move(file)), size_(size), buffer_(std::size_t{1} << 16) {
  more();
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  rest_.remove_prefix(rest_.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
  std::string head;
  bool quoted = false;
  for (const char c : rest_.substr(0, rest_.find_first_of("\r\n"))) {
    quoted ^= c == '"';
    head.append(quoted ? 0 : 1, c);
  }
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
    if (read_ - recordStart_ > mostBytes) {
      status_ = {Failure::damaged, "the record has more than 1 GB"};
    }
  }
  return !rest_.empty() && status_;
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

// After the opening quote. False if there is no closing one, or something else than a separator follows it.
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
      return rest_.empty() || rest_.front() == separator_ || rest_.front() == '\r' || rest_.front() == '\n';
    }
    text += '"';
    rest_.remove_prefix(1);
  }
  return false;
}

bool CsvReader::next(std::vector<CsvField>& fields) {
  recordLine_ = line_;
  recordStart_ = read_;
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
        const char* fault = rest_.empty() ? "a quote is not closed" : "text follows a closing quote";
        status_ = status_ ? Status(Failure::damaged, fault) : status_;
        return false;
      }
    } else {
      takePlain(field.text);
    }
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
  // An export spends most of its time here: each character costs a look into a table.
  static constexpr auto special = [] {
    std::array<bool, 256> characters{};
    for (const char c : {',', ';', '\t', '"', '\r', '\n'}) {
      characters[static_cast<unsigned char>(c)] = true;
    }
    return characters;
  }();
  const auto isSpecial = [](char c) { return special[static_cast<unsigned char>(c)]; };
  if (!text.empty() && text.front() != ' ' && text.back() != ' ' && std::ranges::none_of(text, isSpecial)) {
    target += text;
    return;
  }
  target += '"';
  for (std::size_t quote = text.find('"'); quote != std::string_view::npos; quote = text.find('"')) {
    target.append(text.substr(0, quote + 1)).append(1, '"');
    text.remove_prefix(quote + 1);
  }
  target.append(text).append(1, '"');
}

}  // namespace veltrano::access
