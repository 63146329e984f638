// "database.txt": a line an object, of nine fields in '<' and '>' with nothing between them.
//
// The fields are written as they are. One that holds '<', '>' or a line feed therefore reads back
// otherwise: cut at the '>' or the line feed, with the rest counted to what follows.
#pragma once

#include <string>

#include "MString.h"
#include "ZetNorvDb_Table.h"

namespace zetnorv {

// The file in `directory`; null, which does not open, when there is no directory.
MString databaseFile(const MString& directory);

// Adds a row to `table` for every line of `file` whose nine fields are all there, prints it and
// tells it on the trace. A tenth group becomes the row's info. `file` may be null or missing: no
// rows.
//
// Returns E_FAIL when the file does not open. One that cannot be read to its end is traced and
// gives no rows.
long readDatabase(const MString& file, ZetNorvDb_Table& table);

// Appends `line`, its line feed included, to `file` with one write, so that whoever reads the file
// sees whole lines. `openings` grows by one when the file opens.
//
// Returns E_FAIL, with the cause traced, when the line could not be written: what the file had
// taken of it (disk full) is cut off again.
long appendToDatabase(const MString& file, const std::string& line, int& openings);

}  // namespace zetnorv
