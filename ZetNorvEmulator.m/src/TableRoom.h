// Room for many rows at once.
#pragma once

#include "ZetNorvDb_Table.h"

namespace zetnorv {

// Makes room for `count` rows that are added next. A table grows by one slot and copies all its
// rows whenever it is full; where it is known how many rows come, the copies between the first and
// the last are left out. The table is the same afterwards, its capacity too. Without memory for it
// nothing changes.
void makeRoom(ZetNorvDb_Table& table, int count);

}  // namespace zetnorv
