// Files that are no regular ones, where the system has them.
#pragma once

#include <string>

// Makes a FIFO, a pipe with a name; the running test fails when it cannot be made.
void makeFifo(const std::string& path);

// One who has both ends of a FIFO open while it lives: nobody else waits for a partner, whichever
// end he opens.
class FifoPartner {
 public:
  explicit FifoPartner(const std::string& path);
  ~FifoPartner();
  FifoPartner(const FifoPartner&) = delete;
  FifoPartner& operator=(const FifoPartner&) = delete;

  // Puts bytes in for one who reads.
  void offer(const std::string& bytes);
  // What lies in the FIFO.
  std::string content();

 private:
  int _handle;
};

// Makes the file of a socket that nobody listens at; the running test fails when it cannot be made.
void makeSocket(const std::string& path);

// A device that takes every byte and keeps none, and one that never has room for a byte. Both hold
// no end of bytes (or none) for one who reads them past the foundation.
const char* nullDevice();
const char* fullDevice();
// A device that takes every byte and has no end of them.
const char* endlessDevice();
