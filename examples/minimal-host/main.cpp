#include <ZetNorvEmul.h>

#include <iostream>

int main() {
  const char request[] = "\x0C\0\0\0Hello, server";  // operation 12 in four bytes, then a text
  ZetNorvEmul::preWensnd(0, request, sizeof request - 1);

  // Here the client sends the request; this is what it got.
  char* answer = new char[14]{"Hello, client"};
  int size = 13, status = 0;

  int *sizeAt = &size, *statusAt = &status;
  ZetNorvEmul::postWensnd(0, answer, sizeAt, statusAt);
  std::cout.write(answer, size) << '\n';  // in replay: the answer that was recorded
  delete[] answer;
}
