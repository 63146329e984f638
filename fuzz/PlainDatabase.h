// The emulated database a second time: "database.txt" as lines and groups, its rows as texts, and
// every query as a plain search.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Tokens.h"

namespace fuzz {

using Field = std::optional<std::string>;
using Row = std::array<Field, 10>;

enum Column { kCoid, kCompid, kPartNumber, kName, kPathFile, kUuid, kTable, kType, kTimeStamp };

inline constexpr const char* kColumnNames[] = {"coid",      "compid", "partNumber", "name",
                                               "pathFile",  "uuid",   "table",      "type",
                                               "timestamp", "info"};

// The text of a field; that of a missing one is empty.
inline std::string textOf(const Field& field) { return field.value_or(""); }

// The first `n` groups of a line; an empty one is as good as none.
inline std::vector<Field> groupsOf(const std::string& line, std::size_t n) {
  std::vector<Field> groups;
  for (const std::string& group : cutBrackets(line, '<', '>', n)) {
    groups.push_back(group == kNoToken ? Field() : Field(group));
  }
  return groups;
}

// The row of a line; nothing for a line that lacks one of its nine fields.
inline std::optional<Row> rowOf(const std::string& line) {
  const std::vector<Field> groups = groupsOf(line, 10);
  Row row;
  for (std::size_t i = 0; i < row.size(); ++i) row[i] = groups[i];
  for (std::size_t i = 0; i <= kTimeStamp; ++i) {
    if (!row[i]) return std::nullopt;
  }
  return row;
}

// Whether `whole` starts with `beginning`.
inline bool starts(const std::string& whole, const std::string& beginning) {
  return whole.compare(0, beginning.size(), beginning) == 0;
}

class PlainDatabase {
 public:
  explicit PlainDatabase(const std::string& file) {
    for (const std::string& text : cutAt('\n', file)) {
      const std::string line = firstLine(text);
      const std::optional<Row> row = rowOf(line);
      if (!row) continue;
      rows.push_back(*row);
      lines.push_back(line);
    }
  }

  // The row with exactly these identifiers, or null.
  const Row* withIdentifiers(const std::string& coid, const std::string& compid) const {
    for (const Row& row : rows) {
      if (row[kCoid] == coid && row[kCompid] == compid) return &row;
    }
    return nullptr;
  }

  // The first row whose field is a beginning of `value` and that is no reference; failing that, the
  // last one that is.
  const Row* search(std::size_t column, const std::string& value) const {
    const Row* found = nullptr;
    for (const Row& row : rows) {
      if (!starts(value, textOf(row[column]))) continue;
      found = &row;
      if (!starts("Reference", textOf(row[kPathFile]))) break;
    }
    return found;
  }

  const Row* withPartNumberOrName(const std::string& partNumber, const std::string& name) const {
    for (const Row& row : rows) {
      if (starts(*row[kPartNumber], partNumber) || starts(*row[kName], name)) return &row;
    }
    return nullptr;
  }

  const Row* withCoidAndName(const std::string& coid, const std::string& name) const {
    for (const Row& row : rows) {
      if (starts(*row[kCoid], coid) && starts(*row[kName], name)) return &row;
    }
    return nullptr;
  }

  // The row with these identifiers that tells of a file.
  const Row* file(const std::string& coid, const std::string& compid) const {
    for (const Row& row : rows) {
      if (row[kCoid] == coid && row[kCompid] == compid &&
          isBeginningOfOne(*row[kTable], {"Indefini", "DOCUMENT", "Reference"}) &&
          isBeginningOfOne(*row[kType],
                           {"KelPart", "KelDrawing", "catalog", "KelProcess", "Reference"})) {
        return &row;
      }
    }
    return nullptr;
  }

  std::vector<Row> rows;
  std::vector<std::string> lines;  // that the rows come from

 private:
  static bool isBeginningOfOne(const std::string& text, const std::vector<std::string>& words) {
    for (const std::string& word : words) {
      if (starts(word, text)) return true;
    }
    return false;
  }
};

// The identifier in the 16 characters from `start` on, in hexadecimal: a pair that is none reads
// "FF".
inline std::string identifierAt(const std::string& text, std::size_t start) {
  std::string identifier;
  for (std::size_t i = start; i < start + 16; i += 2) {
    std::string pair = i + 1 < text.size() ? text.substr(i, 2) : "";
    for (char& c : pair) {
      if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + 'A');
    }
    const bool good =
        pair.size() == 2 && pair.find_first_not_of("0123456789ABCDEF") == std::string::npos;
    identifier += good ? pair : "FF";
  }
  return identifier;
}

}  // namespace fuzz
