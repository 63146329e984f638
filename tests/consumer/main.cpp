// Records one exchange through the installed library and fails when it is not on the disk.
#include <ZetNorvEmul.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  setenv("KEL_DRIVE_ROOT", argv[1], 1);
  setenv("BIX_ZET_IN", "\\consumer", 1);
  setenv("ZET_LOG_NAME", "install", 1);
  setenv("ZETNORV_MODE", "SAVE", 1);

  const char request[] = {12, 0, 0, 0, 'h', 'i'};
  const long sent = ZetNorvEmul::preWensnd(0, request, sizeof request);
  char* answer = new char[2]{'o', 'k'};
  int bytes = 2;
  int status = 0;
  int* size = &bytes;
  int* state = &status;
  const long received = ZetNorvEmul::postWensnd(0, answer, size, state);
  delete[] answer;

  const std::filesystem::path recording =
      std::filesystem::path(argv[1]) / "consumer" / "install.rec";
  const bool complete = std::filesystem::file_size(recording / "Reference" / "save12_0.txt") == 6 &&
                        std::filesystem::file_size(recording / "Reference" / "rep12_0.txt") == 2 &&
                        std::filesystem::exists(recording / "Scenario" / "Scenario.txt");
  if (sent != 0 || received != 0 || !complete) {
    std::cerr << "the installed library recorded nothing\n";
    return 1;
  }
  std::cout << "the installed library recorded one exchange\n";
  return 0;
}
