// The rows of the table, by what they are about.
#pragma once

#include <string>

namespace bench {

// Recordings are made below `root`.
void addSaveRows(const std::string& root);
void addReplayRows(const std::string& root);
void addComparisonRows(const std::string& root);
void addAnswerRows(const std::string& root);
void addDatabaseRows(const std::string& root);
// `program` is this program's own file: memory is measured in processes of their own.
void addMemoryRow(const std::string& program, const std::string& root);

// Such a process: replays `steps` exchanges of the recording in `folder`, and prints the most
// memory that it held. Returns its exit status.
int replayInChild(const std::string& folder, int steps);

}  // namespace bench
