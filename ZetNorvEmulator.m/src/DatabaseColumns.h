// The columns of the database's rows, as its header lists them.
#pragma once

namespace zetnorv {

inline constexpr int kCoid = 0;
inline constexpr int kCompid = 1;
inline constexpr int kPartNumber = 2;
inline constexpr int kName = 3;
inline constexpr int kPathFile = 4;  // "Reference" in a reference row
inline constexpr int kUuid = 5;
inline constexpr int kTable = 6;
inline constexpr int kType = 7;
inline constexpr int kTimeStamp = 8;

}  // namespace zetnorv
